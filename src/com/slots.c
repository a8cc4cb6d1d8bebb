/* The place of every member in the table of its interface. Hosts that are already built call a member by its place. */
#include "com/QelHelperInterfaces.h"

#include <stddef.h>

/* The number of a member in late binding is its place too; the seven members of IDispatch come before 1. */
#define AT(number, interface, member) (offsetof(interface##Vtbl, member) == ((number) + 6) * sizeof(void*))

_Static_assert(AT(-6, IDispatch, QueryInterface) && AT(-5, IDispatch, AddRef) && AT(-4, IDispatch, Release) &&
                   AT(-3, IDispatch, GetTypeInfoCount) && AT(-2, IDispatch, GetTypeInfo) &&
                   AT(-1, IDispatch, GetIDsOfNames) && AT(0, IDispatch, Invoke),
               "the slots of IDispatch");
_Static_assert(AT(1, QelBuildHelper, get_UniqueName) && AT(2, QelBuildHelper, get_InstanceNumber) &&
                   AT(3, QelBuildHelper, get_MediaFolder) && AT(4, QelBuildHelper, get_MediaURL) &&
                   AT(5, QelBuildHelper, get_ImageFolder) && AT(6, QelBuildHelper, get_ImageURL) &&
                   AT(7, QelBuildHelper, get_FileFolder) && AT(8, QelBuildHelper, get_FileURL) &&
                   AT(9, QelBuildHelper, get_ArchiveName),
               "the slots of QelBuildHelper");
_Static_assert(AT(1, QelDatabase, get_RecordType) && AT(2, QelDatabase, get_EOF) &&
                   AT(3, QelDatabase, get_RecordFilename) && AT(4, QelDatabase, SeekUID) &&
                   AT(5, QelDatabase, get_RecordURL) && AT(6, QelDatabase, get_DataFolder) &&
                   AT(7, QelDatabase, ChooseLink),
               "the slots of QelDatabase");
_Static_assert(AT(1, QelPlugin, putref_QelThumbnails) && AT(2, QelPlugin, putref_QelDatabase) &&
                   AT(3, QelPlugin, putref_QelTopic) && AT(4, QelPlugin, putref_QelBuildHelper) &&
                   AT(5, QelPlugin, get_InitialScript) && AT(6, QelPlugin, get_Output) &&
                   AT(7, QelPlugin, get_TextFunction) && AT(8, QelPlugin, get_TextRequirementsServer) &&
                   AT(9, QelPlugin, get_TextRequirementsClient) && AT(10, QelPlugin, get_TextSettings) &&
                   AT(11, QelPlugin, get_TextConfig) && AT(12, QelPlugin, get_IsConfigurable) &&
                   AT(13, QelPlugin, get_Description) && AT(14, QelPlugin, get_PreviewImageFilename) &&
                   AT(15, QelPlugin, get_LogoFilename) && AT(16, QelPlugin, CallBack) &&
                   AT(17, QelPlugin, put_Script) && AT(18, QelPlugin, get_Script) && AT(19, QelPlugin, get_ErrorText) &&
                   AT(20, QelPlugin, ShowHelp) && AT(21, QelPlugin, get_RequiresPHP),
               "the slots of QelPlugin");
_Static_assert(AT(1, QelInfo, About) && AT(2, QelInfo, get_Version), "the slots of QelInfo");
_Static_assert(AT(1, QelStringSort, Clear) && AT(2, QelStringSort, AddValue) && AT(3, QelStringSort, get_Value) &&
                   AT(4, QelStringSort, get_ValueCount) && AT(5, QelStringSort, Sort),
               "the slots of QelStringSort");

/* A new member makes its table larger. This check then fails until the member's place is checked above too. */
#define COUNT(interface) (sizeof(interface##Vtbl) / sizeof(void*) - 7)

_Static_assert(COUNT(QelBuildHelper) == 9 && COUNT(QelDatabase) == 7 && COUNT(QelPlugin) == 21 && COUNT(QelInfo) == 2 &&
                   COUNT(QelStringSort) == 5 && COUNT(QelThumbnails) == 0 && COUNT(QelTopic) == 0 &&
                   COUNT(QelPluginAnimationMain) == 0,
               "the numbers of members");
