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

#endif
