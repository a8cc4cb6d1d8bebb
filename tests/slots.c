/* A host in C, on the public headers alone: it calls the slots of the component, each of which stands at its number.
 * Usage: slots COMPONENT. Exits with 0, or prints what is wrong. CallBack 0 and About want a window and are left out.
 */
#include "com/QelHelperInterfaces.h"
#include "entryPoint.h"

#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int Failures = 0;

static void Check(int isRight, const char* myWhat)
{
    if (!isRight)
    {
        ++Failures;
        fprintf(stderr, "wrong: %s\n", myWhat);
    }
}

/* The numbers of late binding count the members; the seven of IDispatch stand before them, up to Invoke at 0. */
#define AT(number, interface, member) (offsetof(interface##Vtbl, member) == ((number) + 6) * sizeof(void*))
#define CALL(number, interface, member, object, ...)                                                                   \
    Check(AT(number, interface, member) && (object)->lpVtbl->member(object, __VA_ARGS__) == S_OK, #member)

/* These are called elsewhere: both sides compile them from one header, and only their places can be wrong. */
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
_Static_assert(AT(1, QelStringSort, Clear) && AT(2, QelStringSort, AddValue) && AT(3, QelStringSort, get_Value) &&
                   AT(4, QelStringSort, get_ValueCount) && AT(5, QelStringSort, Sort),
               "the slots of QelStringSort");
_Static_assert(AT(-3, QelInfo, GetTypeInfoCount) && AT(-2, QelInfo, GetTypeInfo) && AT(-1, QelInfo, GetIDsOfNames) &&
                   AT(0, QelInfo, Invoke) && AT(1, QelInfo, About),
               "the other slots");

/* What the texts are is checked in the component; here a text need only come from the slot. */
#define READ(number, interface, member, object)                                                                        \
    do                                                                                                                 \
    {                                                                                                                  \
        BSTR theText = NULL;                                                                                           \
        CALL(number, interface, member, object, &theText);                                                             \
        SysFreeString(theText);                                                                                        \
    } while (0)

static void WalkPlugin(QelPlugin* myPlugin)
{
    QelThumbnails* myThumbnails = NULL;
    QelDatabase* myDatabase = NULL;
    QelTopic* myTopic = NULL;
    QelBuildHelper* myHelper = NULL;
    VARIANT_BOOL theAnswer = 7;
    BSTR myScript = NULL;
    int32_t myNumber = 0x7FFFFFFF; /* neither a link nor a help topic */
    CALL(1, QelPlugin, putref_QelThumbnails, myPlugin, &myThumbnails);
    CALL(2, QelPlugin, putref_QelDatabase, myPlugin, &myDatabase);
    CALL(3, QelPlugin, putref_QelTopic, myPlugin, &myTopic);
    CALL(4, QelPlugin, putref_QelBuildHelper, myPlugin, &myHelper);
    READ(5, QelPlugin, get_InitialScript, myPlugin);
    READ(6, QelPlugin, get_Output, myPlugin);
    READ(7, QelPlugin, get_TextFunction, myPlugin);
    READ(8, QelPlugin, get_TextRequirementsServer, myPlugin);
    READ(9, QelPlugin, get_TextRequirementsClient, myPlugin);
    READ(10, QelPlugin, get_TextSettings, myPlugin);
    READ(11, QelPlugin, get_TextConfig, myPlugin);
    CALL(12, QelPlugin, get_IsConfigurable, myPlugin, &theAnswer);
    Check(theAnswer == VARIANT_TRUE, "the answer of IsConfigurable");
    READ(13, QelPlugin, get_Description, myPlugin);
    READ(14, QelPlugin, get_PreviewImageFilename, myPlugin);
    READ(15, QelPlugin, get_LogoFilename, myPlugin);
    CALL(16, QelPlugin, CallBack, myPlugin, &myNumber, &theAnswer);
    CALL(17, QelPlugin, put_Script, myPlugin, &myScript);
    READ(18, QelPlugin, get_Script, myPlugin);
    READ(19, QelPlugin, get_ErrorText, myPlugin);
    CALL(20, QelPlugin, ShowHelp, myPlugin, &myNumber);
    theAnswer = 7;
    CALL(21, QelPlugin, get_RequiresPHP, myPlugin, &theAnswer);
    Check(theAnswer == VARIANT_FALSE, "the answer of RequiresPHP");
}

static void WalkComponent(DllGetClassObjectFunction myGetClassObject)
{
    void* theObject = NULL;
    Check(myGetClassObject(&CLSID_Main, &IID_IClassFactory, &theObject) == S_OK, "DllGetClassObject");
    IClassFactory* myFactory = theObject;
    Check(myFactory->lpVtbl->CreateInstance(myFactory, NULL, &IID_QelPlugin, &theObject) == S_OK, "CreateInstance");
    myFactory->lpVtbl->Release(myFactory);
    QelPlugin* myPlugin = theObject;
    WalkPlugin(myPlugin);
    Check(myPlugin->lpVtbl->QueryInterface(myPlugin, &IID_QelInfo, &theObject) == S_OK, "QueryInterface of QelInfo");
    QelInfo* myInfo = theObject;
    READ(2, QelInfo, get_Version, myInfo);
    Check(myInfo->lpVtbl->AddRef(myInfo) > myInfo->lpVtbl->Release(myInfo), "AddRef and Release");
    myInfo->lpVtbl->Release(myInfo);
    Check(myPlugin->lpVtbl->Release(myPlugin) == 0, "the last Release");
}

int main(int myCount, char** myArguments)
{
    DllGetClassObjectFunction myGetClassObject = NULL;
    const EntryPoint myEntry = myCount == 2 ? EntryPointOf(myArguments[1], "DllGetClassObject") : NULL;
    if (myEntry == NULL)
    {
        fprintf(stderr, "usage: slots COMPONENT, a library that loads\n");
        return EXIT_FAILURE;
    }
    memcpy(&myGetClassObject, &myEntry, sizeof myEntry);
    WalkComponent(myGetClassObject);
    return Failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
