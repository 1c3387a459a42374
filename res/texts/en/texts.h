/* English, the module's own language; what every language has to have. docs/translating.md tells how to add one. */
#define LANGUAGE_OF_TEXTS LANG_ENGLISH, SUBLANG_ENGLISH_US
#define LANGUAGE_NUMBER 0x0409
#define LANGUAGE_BLOCK "040904B0"
#define TEXT_DESCRIPTION "Area sets for document scanning"

/* Every dialog */
#define TEXT_OK "OK"
#define TEXT_CANCEL "Cancel"
#define TEXT_HELP "Help"

/* Manage Area Sets */
#define TEXT_MANAGE_CAPTION "Manage Area Sets"
#define TEXT_AREA_SETS "&Area sets"
#define TEXT_CREATE "C&reate"
#define TEXT_COPY "C&opy"
#define TEXT_REMOVE_SET "Re&move"
#define TEXT_CONFIGURE "&Configure..."
#define TEXT_PAGE_SOURCE "Page source for configuration dialog"
#define TEXT_SCANNED_DOCUMENTS "&Scanned documents"
#define TEXT_CONFIGURE_PAGE_SIZE "Config&ure page size"
#define TEXT_SETTINGS "&Settings..."
#define TEXT_PREVIEW "Preview:"
#define TEXT_SIZE "Size:"

/* Configure Area Set and its menu */
#define TEXT_CONFIGURE_CAPTION "Configure Area Set"
#define TEXT_NEXT_PAGE "Nex&t Page"
#define TEXT_PREV_PAGE "Pre&v Page"
#define TEXT_NEXT_DOC "Next &Doc"
#define TEXT_PREV_DOC "Prev Do&c"
#define TEXT_ADD "&Add"
#define TEXT_REMOVE_AREA "&Remove"
#define TEXT_AREAS_ARE "Areas are"
#define TEXT_REQUIRED "R&equired"
#define TEXT_IGNORED "&Ignored"
#define TEXT_PAGE_SIZE "Page Size"
#define TEXT_CURRENT_POSITION "Current Position"
#define TEXT_LIST_OF_RECTANGLES "List of rectangles"
#define TEXT_MENU_VIEW "View"
#define TEXT_MENU_SCALE "Scale"
#define TEXT_MENU_WHOLE_PAGE "Whole &Page"
#define TEXT_MENU_PAGE_HEIGHT "Page &Height"
#define TEXT_MENU_PAGE_WIDTH "Page &Width"
#define TEXT_MENU_SMOOTH_IMAGES "Smooth Images"

/* Select Paper Size */
#define TEXT_PAPER_CAPTION "Select Paper Size"
#define TEXT_STANDARD_SIZE "&Standard paper size"
#define TEXT_PORTRAIT "&Portrait"
#define TEXT_LANDSCAPE "&Landscape"
#define TEXT_CUSTOM_SIZE "&Custom paper size"
#define TEXT_PAPER_WIDTH "&Width:"
#define TEXT_PAPER_HEIGHT "&Height:"
#define TEXT_MEASURE "measure"

/* What every dialog tells the user */
#define TEXT_NUMBER_REFUSED "%1: please enter a number from %2 to %3. Write decimals with a point, for example 8.5."
#define TEXT_FAILED_HOST_OBJECT "This could not be done: a component of the application failed (error %1).\n\n%2 Please try again; if it fails again, choose Cancel and restart the application."
#define TEXT_FAILED_NOT_REGISTERED "This could not be done: a component of the application is not registered (error %1).\n\n%2 Please have the installation of the application repaired."
#define TEXT_FAILED_MEMORY "This could not be done: there is not enough memory.\n\n%1 Please close other programs and try again."
#define TEXT_FAILED_UNEXPECTED "This could not be done because of an unexpected failure.\n\n%1 Please try again; the application's log says which operation failed."
#define TEXT_KEPT "Nothing that you entered is lost."
#define TEXT_BACK_LENGTH "The number that you typed was taken back; the area is as it was."
#define TEXT_BACK_AREA "The new area was taken back."
#define TEXT_BACK_FIELD "The indexing field that you chose was taken back."
#define TEXT_BACK_SET "The new area set was taken back."

/* Strings of Manage Area Sets */
#define TEXT_MANAGE_COLUMN "Selected areas sets"
#define TEXT_MANAGE_COPY_OF "Copy of"
#define TEXT_MANAGE_NEW "New Area Set"
#define TEXT_MANAGE_NOT_READ "The area sets could not be read completely. So that none of them gets lost, nothing can be changed here.\n\nPlease choose Cancel, make sure that the settings of the application can be read, and open this window again."
#define TEXT_MANAGE_NO_PREVIEW "This window could not be set up completely, so nothing can be changed here.\n\nPlease choose Cancel and have the installation of the application repaired."
#define TEXT_MANAGE_NOT_STORED "The area sets could not be saved. Nothing that you entered is lost: the window stays open, and OK tries again."
#define TEXT_MANAGE_NOT_REFILLED "The area sets could not be read again after Cancel. Nothing was saved; restart the application before you go on."
#define TEXT_MANAGE_NOT_CREATED "No area set could be added: there is not enough memory, or no number is left for one more set. Nothing was changed.\n\nPlease close other programs and try again."

/* Strings of Configure Area Set */
#define TEXT_WIDTH "Width"
#define TEXT_HEIGHT "Height"
#define TEXT_X_OFFSET "X Offset"
#define TEXT_Y_OFFSET "Y Offset"
#define TEXT_INDEXING_FIELD "Indexing field"
#define TEXT_WRONG_NUMBER "Wrong number was entered."

/* Reports to the application's log */
#define TEXT_ERR_ENUMERATE_KEY "Zonwick registry key couldn't be enumerated."
#define TEXT_ERR_SET_VALUE "Zonwick registry value couldn't be set."
#define TEXT_ERR_LOAD_VALUE "Zonwick registry value couldn't be loaded."
#define TEXT_ERR_DELETE_KEY "Zonwick registry key couldn't be deleted."
#define TEXT_ERR_READ_SETTINGS "Zonwick failed to read registry."
#define TEXT_ERR_OPEN_DIALOG "Area Set configuration dialog couldn't be opened."
#define TEXT_ERR_RETRIEVE_DATA "Area Set configuration dialog couldn't retrieve data."
