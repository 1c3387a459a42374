/* Deutsch */
#pragma code_page(65001)
#define LANGUAGE_OF_TEXTS LANG_GERMAN, SUBLANG_GERMAN
#define LANGUAGE_NUMBER 0x0407
#define LANGUAGE_BLOCK "040704B0"
#define TEXT_DESCRIPTION "Bereichssätze für das Scannen von Dokumenten"

/* Every dialog */
#define TEXT_OK "OK"
#define TEXT_CANCEL "Abbrechen"
#define TEXT_HELP "Hilfe"

/* Manage Area Sets */
#define TEXT_MANAGE_CAPTION "Bereichssätze verwalten"
#define TEXT_AREA_SETS "&Bereichssätze"
#define TEXT_CREATE "&Neu"
#define TEXT_COPY "&Kopieren"
#define TEXT_REMOVE_SET "&Entfernen"
#define TEXT_CONFIGURE "Be&arbeiten..."
#define TEXT_PAGE_SOURCE "Seite, die beim Bearbeiten gezeigt wird"
#define TEXT_SCANNED_DOCUMENTS "&Gescannte Dokumente"
#define TEXT_CONFIGURE_PAGE_SIZE "&Leere Seite dieser Größe"
#define TEXT_SETTINGS "&Papier..."
#define TEXT_PREVIEW "Vorschau:"
#define TEXT_SIZE "Größe:"

/* Configure Area Set and its menu */
#define TEXT_CONFIGURE_CAPTION "Bereichssatz bearbeiten"
#define TEXT_NEXT_PAGE "Nächste &Seite"
#define TEXT_PREV_PAGE "&Vorige Seite"
#define TEXT_NEXT_DOC "Nächstes &Dok."
#define TEXT_PREV_DOC "Voriges D&ok."
#define TEXT_ADD "&Hinzufügen"
#define TEXT_REMOVE_AREA "&Entfernen"
#define TEXT_AREAS_ARE "Bereiche"
#define TEXT_REQUIRED "ver&wenden"
#define TEXT_IGNORED "&ignorieren"
#define TEXT_PAGE_SIZE "Seitengröße"
#define TEXT_CURRENT_POSITION "Aktuelle Position"
#define TEXT_LIST_OF_RECTANGLES "Liste der Rechtecke"
#define TEXT_MENU_VIEW "Ansicht"
#define TEXT_MENU_SCALE "Maßstab"
#define TEXT_MENU_WHOLE_PAGE "Ganze &Seite"
#define TEXT_MENU_PAGE_HEIGHT "Seiten&höhe"
#define TEXT_MENU_PAGE_WIDTH "Seiten&breite"
#define TEXT_MENU_SMOOTH_IMAGES "Bilder glätten"

/* Select Paper Size */
#define TEXT_PAPER_CAPTION "Papierformat wählen"
#define TEXT_STANDARD_SIZE "&Standardformat"
#define TEXT_PORTRAIT "Hoch&format"
#define TEXT_LANDSCAPE "&Querformat"
#define TEXT_CUSTOM_SIZE "&Eigenes Format"
#define TEXT_PAPER_WIDTH "&Breite:"
#define TEXT_PAPER_HEIGHT "&Höhe:"
#define TEXT_MEASURE "Einheit"

/* What every dialog tells the user */
#define TEXT_NUMBER_REFUSED "%1: Bitte geben Sie eine Zahl von %2 bis %3 ein. Schreiben Sie Dezimalzahlen mit Punkt, zum Beispiel 8.5."
#define TEXT_FAILED_HOST_OBJECT "Das war nicht möglich: Eine Komponente der Anwendung ist fehlgeschlagen (Fehler %1).\n\n%2 Bitte versuchen Sie es noch einmal; schlägt es wieder fehl, wählen Sie „Abbrechen“ und starten Sie die Anwendung neu."
#define TEXT_FAILED_NOT_REGISTERED "Das war nicht möglich: Eine Komponente der Anwendung ist nicht registriert (Fehler %1).\n\n%2 Bitte lassen Sie die Installation der Anwendung reparieren."
#define TEXT_FAILED_MEMORY "Das war nicht möglich: Der Arbeitsspeicher reicht nicht aus.\n\n%1 Bitte schließen Sie andere Programme und versuchen Sie es noch einmal."
#define TEXT_FAILED_UNEXPECTED "Das war wegen eines unerwarteten Fehlers nicht möglich.\n\n%1 Bitte versuchen Sie es noch einmal; das Protokoll der Anwendung nennt den Vorgang, der fehlgeschlagen ist."
#define TEXT_KEPT "Ihre Eingaben sind noch da."
#define TEXT_BACK_LENGTH "Die eingegebene Zahl wurde zurückgenommen; der Bereich ist wie zuvor."
#define TEXT_BACK_AREA "Der neue Bereich wurde zurückgenommen."
#define TEXT_BACK_FIELD "Das gewählte Indexfeld wurde zurückgenommen."
#define TEXT_BACK_SET "Der neue Bereichssatz wurde zurückgenommen."

/* Strings of Manage Area Sets */
#define TEXT_MANAGE_COLUMN "Ausgewählte Bereichssätze"
#define TEXT_MANAGE_COPY_OF "Kopie von"
#define TEXT_MANAGE_NEW "Neuer Bereichssatz"
#define TEXT_MANAGE_NOT_READ "Die Bereichssätze konnten nicht vollständig gelesen werden. Damit keiner verloren geht, lässt sich hier nichts ändern.\n\nBitte wählen Sie „Abbrechen“, sorgen Sie dafür, dass die Einstellungen der Anwendung gelesen werden können, und öffnen Sie dieses Fenster erneut."
#define TEXT_MANAGE_NO_PREVIEW "Dieses Fenster konnte nicht vollständig eingerichtet werden; deshalb lässt sich hier nichts ändern.\n\nBitte wählen Sie „Abbrechen“ und lassen Sie die Installation der Anwendung reparieren."
#define TEXT_MANAGE_NOT_STORED "Die Bereichssätze konnten nicht gespeichert werden. Ihre Eingaben sind noch da: Das Fenster bleibt offen, und mit „OK“ versuchen Sie es noch einmal."
#define TEXT_MANAGE_NOT_REFILLED "Die Bereichssätze konnten nach „Abbrechen“ nicht neu gelesen werden. Es wurde nichts gespeichert; starten Sie die Anwendung neu, bevor Sie weiterarbeiten."
#define TEXT_MANAGE_NOT_CREATED "Es konnte kein Bereichssatz angelegt werden: Der Arbeitsspeicher reicht nicht aus, oder es ist keine Nummer für einen weiteren frei. Es wurde nichts geändert.\n\nBitte schließen Sie andere Programme und versuchen Sie es noch einmal."

/* Strings of Configure Area Set */
#define TEXT_WIDTH "Breite"
#define TEXT_HEIGHT "Höhe"
#define TEXT_X_OFFSET "X-Abstand"
#define TEXT_Y_OFFSET "Y-Abstand"
#define TEXT_INDEXING_FIELD "Indexfeld"
#define TEXT_WRONG_NUMBER "Die eingegebene Zahl ist ungültig."

/* Reports to the application's log */
#define TEXT_ERR_ENUMERATE_KEY "Ein Registrierungsschlüssel von Zonwick konnte nicht aufgelistet werden."
#define TEXT_ERR_SET_VALUE "Ein Registrierungswert von Zonwick konnte nicht gesetzt werden."
#define TEXT_ERR_LOAD_VALUE "Ein Registrierungswert von Zonwick konnte nicht gelesen werden."
#define TEXT_ERR_DELETE_KEY "Ein Registrierungsschlüssel von Zonwick konnte nicht gelöscht werden."
#define TEXT_ERR_READ_SETTINGS "Zonwick konnte die Registrierung nicht lesen."
#define TEXT_ERR_OPEN_DIALOG "Das Fenster zum Bearbeiten der Bereichssätze konnte nicht geöffnet werden."
#define TEXT_ERR_RETRIEVE_DATA "Das Fenster zum Bearbeiten der Bereichssätze konnte keine Daten abrufen."
