#ifndef ZONWICK_RESOURCE_H
#define ZONWICK_RESOURCE_H
/* Identifiers of the module's resources; a localised resource module carries the same ones. */

/* Error texts */
#define IDS_ERR_ENUMERATE_KEY 34101
#define IDS_ERR_SET_VALUE 34102
#define IDS_ERR_LOAD_VALUE 34103
#define IDS_ERR_DELETE_KEY 34104
#define IDS_ERR_READ_SETTINGS 34106
#define IDS_ERR_OPEN_DIALOG 34108
#define IDS_ERR_RETRIEVE_DATA 34109

/* Paper size dialog and the window layer */
#define IDD_PAPER_SIZE 27788
#define IDC_PAPER_FORMAT 27798
#define IDC_PAPER_HEIGHT 27799
#define IDC_PAPER_WIDTH 27800
#define IDC_PAPER_WIDTH_UNIT 27801
#define IDC_PAPER_HEIGHT_UNIT 27802
#define IDC_PAPER_STANDARD 27803
#define IDC_PAPER_CUSTOM 27804
#define IDC_PAPER_HEIGHT_LABEL 27805
#define IDC_PAPER_WIDTH_LABEL 27806
#define IDC_PAPER_PORTRAIT 27807
#define IDC_PAPER_LANDSCAPE 27808
#ifndef IDHELP
#define IDHELP 9
#endif
#define IDS_NUMBER_REFUSED 34201
#define IDS_FAILED_HOST_OBJECT 34202
#define IDS_FAILED_NOT_REGISTERED 34203
#define IDS_FAILED_MEMORY 34204
#define IDS_FAILED_UNEXPECTED 34205
/* End of the paper size dialog and the window layer */

#endif
