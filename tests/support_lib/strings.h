#pragma once
#define IDS_TEST_TEXT 500
#define IDS_TEST_PERCENT 501
