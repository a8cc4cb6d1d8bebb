/* The interfaces between a site builder (the host) and its page plug-ins. For C and C++.
 *
 * The host calls QelPlugin and QelInfo; the plug-in calls QelBuildHelper and QelDatabase, which the host hands in.
 * Everything is called on the thread that made the object. The members of an interface stand in the order of their
 * slots, which is also their number for late binding, from 1.
 *
 * Texts that come out of a call belong to the caller (SysFreeString). An argument by reference is one more pointer; the
 * plug-in changes none of them. Every member gives 0 for success. A failed one gives 0x800A0000 and the error's number,
 * or unchanged what a failed call into the host gave, and leaves number and text in the thread's error information.
 * A null pointer where a value is to go or to come from is E_POINTER. A null BSTR is the empty text. */
#ifndef QEL_HELPER_INTERFACES_H
#define QEL_HELPER_INTERFACES_H

#include "qelcom.h"

/* clang-format off */ /* NOLINTBEGIN(cppcoreguidelines-virtual-class-destructor) */
/* What the host tells while it builds pages. Folders and addresses end in their separator. */
#define QEL_THIS QelBuildHelper
QEL_INTERFACE(QelBuildHelper, IDispatch)
    QEL_C_DISPATCH_MEMBERS
    QEL_MEMBER(get_UniqueName, BSTR* theName)         /* for file names; unique among the modules of a build */
    QEL_MEMBER(get_InstanceNumber, int32_t* theNumber) /* for names in the page; the same through one page output */
    QEL_MEMBER(get_MediaFolder, BSTR* theFolder)      /* local folder that tunes are copied to */
    QEL_MEMBER(get_MediaURL, BSTR* theURL)            /* the same place as the page addresses it */
    QEL_MEMBER(get_ImageFolder, BSTR* theFolder)      /* the same for pictures */
    QEL_MEMBER(get_ImageURL, BSTR* theURL)
    QEL_MEMBER(get_FileFolder, BSTR* theFolder)       /* the same for other linked files */
    QEL_MEMBER(get_FileURL, BSTR* theURL)
    QEL_MEMBER(get_ArchiveName, BSTR* theName)        /* file name of this module's archive below DataFolder */
QEL_END_INTERFACE(QelBuildHelper)
#undef QEL_THIS

/* The host's database of the site, with one current record. */
#define QEL_THIS QelDatabase
QEL_INTERFACE(QelDatabase, IDispatch)
    QEL_C_DISPATCH_MEMBERS
    /* Kind of the current record: 0 none; 1, 2, 3, 6 addressed by RecordURL; 4 a picture; 5 another file. */
    QEL_MEMBER(get_RecordType, int32_t* theType)
    /* True when SeekUID found nothing. */
    QEL_MEMBER(get_EOF, VARIANT_BOOL* theEnd)
    /* File name, below DataFolder, of a record of kind 4 or 5. */
    QEL_MEMBER(get_RecordFilename, BSTR* theFilename)
    /* Makes the record of that uid the current one. The two numbers hold 0 and are not read back. */
    QEL_MEMBER(SeekUID, BSTR* myUID, int32_t* myFirst, int32_t* mySecond)
    /* Address of the current record, usable as href. */
    QEL_MEMBER(get_RecordURL, BSTR* theURL)
    /* Local folder of the site's data; ends in a separator. */
    QEL_MEMBER(get_DataFolder, BSTR* theFolder)
    /* Lets the author pick a link target. The result replaces the present link whole: "UID:" and a record's uid,
     * "URL:" and an address, or the empty text. */
    QEL_MEMBER(ChooseLink, BSTR* myPresentLink, BSTR* theLink)
QEL_END_INTERFACE(QelDatabase)
#undef QEL_THIS

/* Two more services of a host, which plug-ins may accept. Their members are the host's own. */
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
 * module. There is one set of settings per thread, shared by all its plug-in objects: a script is in force until the
 * next one is written. */
#define QEL_THIS QelPlugin
QEL_INTERFACE(QelPlugin, IDispatch)
    QEL_C_DISPATCH_MEMBERS
    QEL_MEMBER(putref_QelThumbnails, QelThumbnails** myThumbnails) /* accepted and not kept */
    QEL_MEMBER(putref_QelDatabase, QelDatabase** myDatabase)       /* kept, with a reference; null lets it go */
    QEL_MEMBER(putref_QelTopic, QelTopic** myTopic)                /* accepted and not kept */
    QEL_MEMBER(putref_QelBuildHelper, QelBuildHelper** myBuildHelper) /* kept, with a reference; null lets it go */
    QEL_MEMBER(get_InitialScript, BSTR* theScript)           /* script of a new module */
    QEL_MEMBER(get_Output, BSTR* theText)                    /* the module's piece of the page; stages its files.
                                                                Empty or "[Error de plug-in]": see ErrorText */
    QEL_MEMBER(get_TextFunction, BSTR* theText)              /* what the plug-in does, with mark-up */
    QEL_MEMBER(get_TextRequirementsServer, BSTR* theText)    /* what it asks of the web server, with mark-up */
    QEL_MEMBER(get_TextRequirementsClient, BSTR* theText)    /* what it asks of the browser, with mark-up */
    QEL_MEMBER(get_TextSettings, BSTR* theText)              /* summary of the module, with mark-up */
    QEL_MEMBER(get_TextConfig, BSTR* theText)                /* how to open the dialog, with mark-up */
    QEL_MEMBER(get_IsConfigurable, VARIANT_BOOL* theAnswer)  /* always true */
    QEL_MEMBER(get_Description, BSTR* theText)               /* one line about the plug-in */
    QEL_MEMBER(get_PreviewImageFilename, BSTR* theName)      /* bitmap beside the component, without folder */
    QEL_MEMBER(get_LogoFilename, BSTR* theName)              /* the same */
    QEL_MEMBER(CallBack, int32_t* myLink, VARIANT_BOOL* theAnswer) /* 0 opens the settings dialog and gives true when
                                                                it was confirmed; any other number gives false */
    QEL_MEMBER(put_Script, BSTR* myScript)                   /* puts a stored module in hand */
    QEL_MEMBER(get_Script, BSTR* theScript)                  /* the module in hand, to store */
    QEL_MEMBER(get_ErrorText, BSTR* theText)                 /* reason of the last failure since the last script */
    QEL_MEMBER(ShowHelp, int32_t* myID)                      /* opens the help at a context number, such as 100 */
    QEL_MEMBER(get_RequiresPHP, VARIANT_BOOL* theAnswer)     /* always false */
QEL_END_INTERFACE(QelPlugin)
#undef QEL_THIS

#define QEL_THIS QelInfo
QEL_INTERFACE(QelInfo, IDispatch)
    QEL_C_DISPATCH_MEMBERS
    QEL_MEMBER0(About)                     /* shows a box about the plug-in; returns when it is closed */
    QEL_MEMBER(get_Version, BSTR* theText) /* such as 1.0.19 */
QEL_END_INTERFACE(QelInfo)
#undef QEL_THIS

/* The default interface of the plug-in's class. It has no slots of its own; late-bound it answers the names of
 * QelPlugin under their numbers and those of QelInfo under the numbers that follow. */
#define QEL_THIS QelPluginAnimationMain
QEL_INTERFACE(QelPluginAnimationMain, IDispatch)
    QEL_C_DISPATCH_MEMBERS
QEL_END_INTERFACE(QelPluginAnimationMain)
#undef QEL_THIS

/* A list of texts that sorts itself by character code. Entries count from 1. */
#define QEL_THIS QelStringSort
QEL_INTERFACE(QelStringSort, IDispatch)
    QEL_C_DISPATCH_MEMBERS
    QEL_MEMBER0(Clear)
    QEL_MEMBER(AddValue, BSTR* myString)
    QEL_MEMBER(get_Value, int32_t* myIndex, BSTR* theValue) /* 0x800A0009: the index is outside the table */
    QEL_MEMBER(get_ValueCount, int32_t* theCount)
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
