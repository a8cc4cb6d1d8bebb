/* The interfaces between a site builder (the host) and its page plug-ins. For C11 and C++17.
 *
 * The host calls QelPlugin and QelInfo; the plug-in calls QelBuildHelper and QelDatabase, which the host implements and
 * hands in. An object is called on the thread that created it, and the plug-in calls the services of a thread on that
 * thread. The members of an interface are in the order of their slots, which is also their number for late binding,
 * from 1. The plug-in calls the services by their slots, never by Invoke.
 *
 * Texts: a BSTR that a call returns belongs to the caller, who frees it by SysFreeString. A BSTR that is passed in
 * stays the caller's. Null is the empty text.
 *
 * Arguments by reference are one more pointer. The plug-in changes none of them.
 *
 * Results: each member returns S_OK, or E_POINTER for a null pointer where a value is read or written, or 0x800A0000
 * and the number of an error, or unchanged what a failed call into the host returned. A failed member leaves a
 * description and a source in the thread's error information (GetErrorInfo), and its result, if it has one, is empty.
 * "Error 6" below is the result 0x800A0006. Error 7, no memory, is possible everywhere. */
#ifndef QEL_HELPER_INTERFACES_H
#define QEL_HELPER_INTERFACES_H

#include "qelcom.h"

/* clang-format off */ /* NOLINTBEGIN(cppcoreguidelines-virtual-class-destructor) */
/* The host's build service, which the host implements. The plug-in reads it during Output, and ArchiveName when the
 * author confirms the dialog. A folder is a local path in UTF-16, absolute, and ends in its separator, because a file
 * name is appended as it is. An address ends in "/" for the same reason; it is written into the page as it is. When a
 * member fails, the page ends there: Output succeeds with "[Error de plug-in]", and ErrorText has the number and the
 * description of the failure. */
#define QEL_THIS QelBuildHelper
QEL_INTERFACE(QelBuildHelper, IDispatch)
    QEL_C_DISPATCH_MEMBERS
    /* A part of the names of staged files. Unique among the modules of a build, also where case does not count, and
     * made of characters that every file name and address may have: letters, digits, "-" and "_" of ASCII. */
    QEL_MEMBER(get_UniqueName, BSTR* theName)
    /* A part of JavaScript names in the page: not negative, unique among the modules of a page, and the same through
     * one Output. */
    QEL_MEMBER(get_InstanceNumber, int32_t* theNumber)
    /* The local folder that tunes are copied to. It exists. */
    QEL_MEMBER(get_MediaFolder, BSTR* theFolder)
    /* The address of MediaFolder as the page reaches it, absolute or relative to the page. */
    QEL_MEMBER(get_MediaURL, BSTR* theURL)
    /* The local folder that pictures and linked pictures are copied to. It exists. */
    QEL_MEMBER(get_ImageFolder, BSTR* theFolder)
    /* The address of ImageFolder. */
    QEL_MEMBER(get_ImageURL, BSTR* theURL)
    /* The local folder that other linked files are copied to. It exists. A file that is there already stays. */
    QEL_MEMBER(get_FileFolder, BSTR* theFolder)
    /* The address of FileFolder. */
    QEL_MEMBER(get_FileURL, BSTR* theURL)
    /* The file name, below DataFolder, of the archive of the module in hand. No other module has it, and it is the same
     * each time it is read for one module. The plug-in writes that file. */
    QEL_MEMBER(get_ArchiveName, BSTR* theName)
QEL_END_INTERFACE(QelBuildHelper)
#undef QEL_THIS

/* The host's database of the site, with one current record, which the host implements. When a member fails, the
 * page ends there, as it does for QelBuildHelper. In the dialog the operation ends, and a message shows the reason. */
#define QEL_THIS QelDatabase
QEL_INTERFACE(QelDatabase, IDispatch)
    QEL_C_DISPATCH_MEMBERS
    /* The kind of the current record: 0 none; 1, 2, 3 and 6 have an address, RecordURL; 4 is a file for ImageFolder;
     * 5 is a file for FileFolder. A link to any other number has no target. */
    QEL_MEMBER(get_RecordType, int32_t* theType)
    /* VARIANT_TRUE when the last SeekUID found nothing. The link is then reported as broken. */
    QEL_MEMBER(get_EOF, VARIANT_BOOL* theEnd)
    /* The name of the file below DataFolder, without a folder, of a record of kind 4 or 5. */
    QEL_MEMBER(get_RecordFilename, BSTR* theFilename)
    /* Makes the record with this uid the current one: the text of a link after "UID:". Finding none is no failure, see
     * EOF. Both numbers are 0; what the host writes to them is ignored. */
    QEL_MEMBER(SeekUID, BSTR* myUID, int32_t* myFirst, int32_t* mySecond)
    /* The address of the current record, of kind 1, 2, 3 or 6, as it is written into an href. */
    QEL_MEMBER(get_RecordURL, BSTR* theURL)
    /* The local folder of the site's data, where archives and the files of records are. It ends in its separator. */
    QEL_MEMBER(get_DataFolder, BSTR* theFolder)
    /* Lets the author choose a link target. Takes the present link, empty for none. Returns the link that replaces it:
     * "UID:" and a uid, "URL:" and an address, the empty text for none, or the present link when the author cancels.
     * The settings dialog is open meanwhile. A failure is shown to the author, and the link stays. */
    QEL_MEMBER(ChooseLink, BSTR* myPresentLink, BSTR* theLink)
QEL_END_INTERFACE(QelDatabase)
#undef QEL_THIS

/* Two more services of a host, which plug-ins may accept. Their members belong to the host. */
#define QEL_THIS QelThumbnails
QEL_INTERFACE(QelThumbnails, IDispatch)
    QEL_C_DISPATCH_MEMBERS
QEL_END_INTERFACE(QelThumbnails)
#undef QEL_THIS

#define QEL_THIS QelTopic
QEL_INTERFACE(QelTopic, IDispatch)
    QEL_C_DISPATCH_MEMBERS
QEL_END_INTERFACE(QelTopic)
#undef QEL_THIS

/* A page plug-in. Order of calls: hand in QelDatabase and QelBuildHelper; write a module's Script; then ask about that
 * module. Each thread has one record of settings, shared by all plug-in objects of the thread: a script is in force
 * until the next one is written. */
#define QEL_THIS QelPlugin
QEL_INTERFACE(QelPlugin, IDispatch)
    QEL_C_DISPATCH_MEMBERS
    /* Takes a service and does not keep it. */
    QEL_MEMBER(putref_QelThumbnails, QelThumbnails** myThumbnails)
    /* Takes the database and keeps a reference; a null object releases it. */
    QEL_MEMBER(putref_QelDatabase, QelDatabase** myDatabase)
    /* Takes a service and does not keep it. */
    QEL_MEMBER(putref_QelTopic, QelTopic** myTopic)
    /* Takes the build service and keeps a reference; a null object releases it. */
    QEL_MEMBER(putref_QelBuildHelper, QelBuildHelper** myBuildHelper)
    /* The script of a new module. It has no link param: see put_Script. */
    QEL_MEMBER(get_InitialScript, BSTR* theScript)
    /* The module's piece of the page, one script element, its lines ended by CR LF. Copies the module's picture,
     * tune and linked file into the folders of the build. Needs both services, as far as the module uses them. A
     * module that cannot be built is no failed call: the text is empty (no picture is chosen) or "[Error de
     * plug-in]", and ErrorText has the reason. Files that were copied before a failure stay. */
    QEL_MEMBER(get_Output, BSTR* theText)
    /* A description of the plug-in for the author, with mark-up. */
    QEL_MEMBER(get_TextFunction, BSTR* theText)
    /* What it requires of the web server, with mark-up. */
    QEL_MEMBER(get_TextRequirementsServer, BSTR* theText)
    /* What it requires of the browser, with mark-up. */
    QEL_MEMBER(get_TextRequirementsClient, BSTR* theText)
    /* A summary of the module in hand, with mark-up. Error 5: it shows a picture or plays a tune of the library
     * whose file name has fewer than four characters. */
    QEL_MEMBER(get_TextSettings, BSTR* theText)
    /* How to open the dialog, with mark-up. */
    QEL_MEMBER(get_TextConfig, BSTR* theText)
    /* VARIANT_TRUE: the plug-in has a dialog. */
    QEL_MEMBER(get_IsConfigurable, VARIANT_BOOL* theAnswer)
    /* One line about the plug-in, without mark-up. */
    QEL_MEMBER(get_Description, BSTR* theText)
    /* The file name of a bitmap beside the component, without a folder. */
    QEL_MEMBER(get_PreviewImageFilename, BSTR* theName)
    /* The file name of another bitmap beside the component, without a folder. */
    QEL_MEMBER(get_LogoFilename, BSTR* theName)
    /* The author clicked on a word of a mark-up text: `myLink` is its number. 0 opens the settings dialog of the module
     * in hand and returns when it is closed; needs a display, on the thread that owns the process's windows, and the
     * services as far as the module uses them. VARIANT_TRUE: the author confirmed it, and Script has new settings to
     * store. VARIANT_FALSE: the author cancelled it, but the record in hand may have been edited and the archive
     * written. Any other number does nothing and returns VARIANT_FALSE.
     * Error 5: another thread owns the windows, or the dialog is open already. 53: the window module is not installed.
     * 57: there is no display. Those of the services. */
    QEL_MEMBER(CallBack, int32_t* myLink, VARIANT_BOOL* theAnswer)
    /* Puts a stored module in hand: resets all settings but the link, then reads the script. A script without a link
     * param keeps the link of the module before it. Malformed text has a defined reading and is no failure; a script of
     * another format version results in a module with nothing chosen, and ErrorText has the reason. Window messages may run
     * meanwhile. Error 6: a date is out of range, and the settings before it are in force. */
    QEL_MEMBER(put_Script, BSTR* myScript)
    /* The settings of the module in hand, to store. Lines end in CR LF. */
    QEL_MEMBER(get_Script, BSTR* theScript)
    /* The reason of the last failure since the last put_Script, one line in Spanish; empty if there was none. A later
     * success does not clear it. */
    QEL_MEMBER(get_ErrorText, BSTR* theText)
    /* Opens the help at a context number, such as 100, without waiting. A missing topic or viewer has no effect. */
    QEL_MEMBER(ShowHelp, int32_t* myID)
    /* VARIANT_FALSE: the page needs no PHP. */
    QEL_MEMBER(get_RequiresPHP, VARIANT_BOOL* theAnswer)
QEL_END_INTERFACE(QelPlugin)
#undef QEL_THIS

#define QEL_THIS QelInfo
QEL_INTERFACE(QelInfo, IDispatch)
    QEL_C_DISPATCH_MEMBERS
    /* Shows a box about the plug-in and returns when it is closed. Needs what the dialog of CallBack needs of windows,
     * and fails as that does. */
    QEL_MEMBER0(About)
    /* The version, such as 1.0.19: three decimal numbers without leading zeros. */
    QEL_MEMBER(get_Version, BSTR* theText)
QEL_END_INTERFACE(QelInfo)
#undef QEL_THIS

/* The default interface of the plug-in's class. It has no slots of its own. Late-bound it has the names of QelPlugin
 * with their numbers, and those of QelInfo with the numbers that follow. */
#define QEL_THIS QelPluginAnimationMain
QEL_INTERFACE(QelPluginAnimationMain, IDispatch)
    QEL_C_DISPATCH_MEMBERS
QEL_END_INTERFACE(QelPluginAnimationMain)
#undef QEL_THIS

/* A list of texts that can be sorted. Entries count from 1. Each object has its own list. */
#define QEL_THIS QelStringSort
QEL_INTERFACE(QelStringSort, IDispatch)
    QEL_C_DISPATCH_MEMBERS
    /* Removes all entries. */
    QEL_MEMBER0(Clear)
    /* Appends a copy of a text. Equal texts are all kept. */
    QEL_MEMBER(AddValue, BSTR* myString)
    /* The text of an entry. Error 9: the index is negative or beyond the table; inside the table, but outside of 1 to
     * ValueCount, the text is empty. */
    QEL_MEMBER(get_Value, int32_t* myIndex, BSTR* theValue)
    /* The number of entries. */
    QEL_MEMBER(get_ValueCount, int32_t* theCount)
    /* Sorts the entries in ascending order, by the numbers of their UTF-16 units and without a locale. */
    QEL_MEMBER0(Sort)
QEL_END_INTERFACE(QelStringSort)
#undef QEL_THIS
/* clang-format on */ /* NOLINTEND(cppcoreguidelines-virtual-class-destructor) */

QEL_CONSTANT IID IID_QelPlugin = {0x392E1C06, 0x13AC, 0x45E5, {0xBB, 0xD4, 0x26, 0x4E, 0xDC, 0x8D, 0x5D, 0x7D}};
QEL_CONSTANT IID IID_QelInfo = {0xB3B6A032, 0x33BD, 0x447F, {0x95, 0xEB, 0x13, 0xBD, 0x22, 0x86, 0xD1, 0x93}};
QEL_CONSTANT IID IID_QelBuildHelper = {0x76880C42, 0xBA9C, 0x41A8, {0x9B, 0xFC, 0xD6, 0xC5, 0x28, 0xAA, 0x09, 0x5C}};
QEL_CONSTANT IID IID_QelDatabase = {0x0F23B278, 0x9F82, 0x47DF, {0xA0, 0x9A, 0x5C, 0xDA, 0xE3, 0xDC, 0x5B, 0x4A}};
QEL_CONSTANT IID IID_QelThumbnails = {0xDFBAC939, 0xBD20, 0x4D66, {0x9B, 0x6C, 0xE8, 0x04, 0x12, 0x8A, 0x34, 0x5F}};
QEL_CONSTANT IID IID_QelTopic = {0x07E5630C, 0xDEDB, 0x4499, {0xA0, 0xED, 0x9F, 0x72, 0x16, 0xBD, 0x4C, 0x9A}};

/* The closed library that these interfaces come from, and the component's type library, version 1.0. */
QEL_CONSTANT GUID LIBID_QelHelperInterfaces = {
    0xA6107D97, 0xC7EB, 0x493F, {0x9E, 0x38, 0x0B, 0xE8, 0x56, 0xD4, 0x96, 0x47}};
QEL_CONSTANT GUID LIBID_QelPluginAnimation = {
    0x764DCF71, 0xDA3B, 0x4767, {0xBE, 0xE9, 0xD2, 0x21, 0x53, 0x07, 0xBF, 0xF6}};

/* Class QelPluginAnimation.Main: QelPlugin, QelInfo, its default interface, ISupportErrorInfo. */
QEL_CONSTANT CLSID CLSID_Main = {0x4FCC59CA, 0xC869, 0x4963, {0xA8, 0x43, 0x14, 0xD7, 0xC2, 0x9A, 0xFA, 0x23}};
QEL_CONSTANT IID IID_QelPluginAnimationMain = {
    0x9310684A, 0x503A, 0x4CF6, {0xB5, 0x63, 0x28, 0xAB, 0x26, 0x33, 0xF9, 0x1C}};

/* Class QelPluginAnimation.classStringSort. */
QEL_CONSTANT CLSID CLSID_classStringSort = {
    0xAC34163F, 0xA9F3, 0x4932, {0xA7, 0x5F, 0x28, 0x4E, 0x50, 0xAD, 0x18, 0x1B}};
QEL_CONSTANT IID IID_QelStringSort = {0x864B6AE1, 0x618F, 0x4B9B, {0x9F, 0x81, 0x12, 0xF8, 0x80, 0x1B, 0x48, 0x94}};

#endif
