/* What the component says about itself. Only macros: the string table is made from them, and so is the version record
 * of the file where the system has one, whose resource compiler reads nothing else. */
#ifndef QEL_VERSION_TEXTS_H
#define QEL_VERSION_TEXTS_H

#define QEL_PROJECT_NAME "QelPluginAnimation"
#define QEL_TITLE "Tesselwind"
#define QEL_FILE_DESCRIPTION "Läßt Grafiken über Ihre Homepage schweben"
#define QEL_COPYRIGHT "Copyright (c) 2026 The Tesselwind authors"

/* The file version is written with two and four digits, the numbers without leading zeros. */
#define QEL_VERSION_MAJOR 1
#define QEL_VERSION_MINOR 0
#define QEL_VERSION_REVISION 19
#define QEL_FILE_VERSION "1.00.0019"

#endif
