/* A host in C, on the public headers alone: it walks every slot of the component, and the component walks its slots.
 *
 * Usage: slots COMPONENT. Exits with 0, or prints what is wrong. CallBack 0 and About want a window and are left out.
 */
#include "com/QelHelperInterfaces.h"

#include <dlfcn.h>
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

/* ---- The host's objects: both services are one object each, counted, with fixed answers -------------------------- */

static uint32_t Holders = 0;
static int32_t Asked = 0;
static int32_t FolderAsked = 0;

static HRESULT HostQuery(const IID* myWanted, const IID* myOwn, void* myObject, void** theObject)
{
    const int isKnown = memcmp(myWanted, myOwn, sizeof(IID)) == 0 || memcmp(myWanted, &IID_IUnknown, sizeof(IID)) == 0;
    *theObject = isKnown ? myObject : NULL;
    Holders += isKnown ? 1 : 0;
    return isKnown ? S_OK : E_NOINTERFACE;
}

static HRESULT HelperQuery(QelBuildHelper* This, const IID* myInterface, void** theObject)
{
    return HostQuery(myInterface, &IID_QelBuildHelper, This, theObject);
}

static uint32_t HelperAddRef(QelBuildHelper* This)
{
    (void)This;
    return ++Holders;
}

static uint32_t HelperRelease(QelBuildHelper* This)
{
    (void)This;
    return --Holders;
}

static HRESULT HelperNumber(QelBuildHelper* This, int32_t* theNumber)
{
    (void)This;
    ++Asked;
    *theNumber = 4711;
    return S_OK;
}

static HRESULT DatabaseQuery(QelDatabase* This, const IID* myInterface, void** theObject)
{
    return HostQuery(myInterface, &IID_QelDatabase, This, theObject);
}

static uint32_t DatabaseAddRef(QelDatabase* This)
{
    (void)This;
    return ++Holders;
}

static uint32_t DatabaseRelease(QelDatabase* This)
{
    (void)This;
    return --Holders;
}

static HRESULT DatabaseFolder(QelDatabase* This, BSTR* theFolder)
{
    (void)This;
    ++FolderAsked;
    *theFolder = SysAllocString(u"/nonexistent/");
    return S_OK;
}

/* The members that the page of this test does not need stay empty: a call through another slot would end the test. */
static const QelBuildHelperVtbl HelperTable = {.QueryInterface = HelperQuery,
                                               .AddRef = HelperAddRef,
                                               .Release = HelperRelease,
                                               .get_InstanceNumber = HelperNumber};
static const QelDatabaseVtbl DatabaseTable = {.QueryInterface = DatabaseQuery,
                                              .AddRef = DatabaseAddRef,
                                              .Release = DatabaseRelease,
                                              .get_DataFolder = DatabaseFolder};

/* ---- The walk ---------------------------------------------------------------------------------------------------- */

/* Compares a text with the beginning that it should have, and frees it. */
static void CheckText(HRESULT myResult, BSTR myText, const char16_t* myBeginning, const char* myWhat)
{
    uint32_t myLength = 0;
    while (myBeginning[myLength] != 0)
    {
        ++myLength;
    }
    Check(myResult == S_OK && SysStringLen(myText) >= myLength &&
              (myLength == 0 || memcmp(myText, myBeginning, myLength * sizeof(char16_t)) == 0),
          myWhat);
    SysFreeString(myText);
}

static void WalkTexts(QelPlugin* myPlugin)
{
    const QelPluginVtbl* mySlots = myPlugin->lpVtbl;
    const struct
    {
        HRESULT (*Read)(QelPlugin*, BSTR*);
        const char16_t* Beginning;
        const char* Name;
    } myTexts[] = {
        {mySlots->get_InitialScript, u"<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">", "InitialScript"},
        {mySlots->get_Output, u"", "Output"},
        {mySlots->get_TextFunction, u"Este plug-in coloca", "TextFunction"},
        {mySlots->get_TextRequirementsServer, u"Este plug-in no exige", "TextRequirementsServer"},
        {mySlots->get_TextRequirementsClient, u"El plug-in requiere", "TextRequirementsClient"},
        {mySlots->get_TextSettings, u"<warning>", "TextSettings"},
        {mySlots->get_TextConfig, u"Haga clic <callback type=0", "TextConfig"},
        {mySlots->get_Description, u"Mueve objetos", "Description"},
        {mySlots->get_PreviewImageFilename, u"QelPluginAnimationPreview.bmp", "PreviewImageFilename"},
        {mySlots->get_LogoFilename, u"QelPluginAnimationLogo.bmp", "LogoFilename"},
        {mySlots->get_Script, u"<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\">\r\n<pg.param", "Script"},
        {mySlots->get_ErrorText, u"", "ErrorText"},
    };
    for (size_t i = 0; i < sizeof myTexts / sizeof *myTexts; ++i)
    {
        BSTR theText = NULL;
        const HRESULT myResult = myTexts[i].Read(myPlugin, &theText);
        CheckText(myResult, theText, myTexts[i].Beginning, myTexts[i].Name);
    }
}

static void WalkAnswers(QelPlugin* myPlugin)
{
    const QelPluginVtbl* mySlots = myPlugin->lpVtbl;
    int32_t myLink = 1;
    int32_t myTopic = 0x7FFFFFFF; /* no help has it */
    VARIANT_BOOL theAnswer = 7;
    Check(mySlots->get_IsConfigurable(myPlugin, &theAnswer) == S_OK && theAnswer == VARIANT_TRUE, "IsConfigurable");
    Check(mySlots->get_RequiresPHP(myPlugin, &theAnswer) == S_OK && theAnswer == VARIANT_FALSE, "RequiresPHP");
    theAnswer = 7;
    Check(mySlots->CallBack(myPlugin, &myLink, &theAnswer) == S_OK && theAnswer == VARIANT_FALSE, "CallBack 1");
    Check(mySlots->ShowHelp(myPlugin, &myTopic) == S_OK, "ShowHelp");
}

static void WalkDispatch(QelPlugin* myPlugin)
{
    const QelPluginVtbl* mySlots = myPlugin->lpVtbl;
    char16_t myName[] = u"isconfigurable";
    char16_t* myNames = myName;
    struct ITypeInfo* theInfo = NULL;
    uint32_t theCount = 7;
    DISPID theNumber = 0;
    DISPPARAMS myParams = {NULL, NULL, 0, 0};
    VARIANT theResult;
    VariantInit(&theResult);
    Check(mySlots->GetTypeInfoCount(myPlugin, &theCount) == S_OK && theCount == 0, "GetTypeInfoCount");
    Check(mySlots->GetTypeInfo(myPlugin, 0, 0, &theInfo) == DISP_E_BADINDEX && theInfo == NULL, "GetTypeInfo");
    Check(mySlots->GetIDsOfNames(myPlugin, &GUID_NULL, &myNames, 1, 0, &theNumber) == S_OK && theNumber == 12,
          "GetIDsOfNames");
    Check(mySlots->Invoke(myPlugin, theNumber, &GUID_NULL, 0, DISPATCH_PROPERTYGET, &myParams, &theResult, NULL,
                          NULL) == S_OK &&
              theResult.vt == VT_BOOL && theResult.boolVal == VARIANT_TRUE,
          "Invoke");
}

/* Hands the services in, has a page written with them, and takes them back. */
static void WalkServices(QelPlugin* myPlugin)
{
    const QelPluginVtbl* mySlots = myPlugin->lpVtbl;
    QelBuildHelper myHelper = {&HelperTable};
    QelDatabase myDatabase = {&DatabaseTable};
    QelBuildHelper* myHelperReference = &myHelper;
    QelDatabase* myDatabaseReference = &myDatabase;
    QelThumbnails* myThumbnails = NULL;
    QelTopic* myTopic = NULL;
    BSTR theText = NULL;
    BSTR myScript = SysAllocString(u"<pg.plugin uid=\"QelPluginAnimation\" version=\"1.0\"><pg.file filename=\"a.dat\">"
                                   u"<pg.param name=\"image\" value=\"a.gif\"><pg.param name=\"showimage\" value=\"0\">"
                                   u"<pg.param name=\"playmidi\" value=\"0\">");
    Check(mySlots->putref_QelThumbnails(myPlugin, &myThumbnails) == S_OK, "QelThumbnails");
    Check(mySlots->putref_QelTopic(myPlugin, &myTopic) == S_OK, "QelTopic");
    Check(mySlots->putref_QelDatabase(myPlugin, &myDatabaseReference) == S_OK, "QelDatabase");
    Check(mySlots->putref_QelBuildHelper(myPlugin, &myHelperReference) == S_OK, "QelBuildHelper");
    Check(Holders == 2, "the component holds both services");
    Check(mySlots->put_Script(myPlugin, &myScript) == S_OK, "put Script");
    SysFreeString(myScript);
    const HRESULT myResult = mySlots->get_Output(myPlugin, &theText);
    CheckText(myResult, theText, u"<script type=\"text/javascript\">\r\nvar showme4711=true;", "Output with services");
    Check(Asked == 1 && FolderAsked == 1, "the members of the services that were called");
    myHelperReference = NULL;
    myDatabaseReference = NULL;
    Check(mySlots->putref_QelDatabase(myPlugin, &myDatabaseReference) == S_OK, "QelDatabase let go");
    Check(mySlots->putref_QelBuildHelper(myPlugin, &myHelperReference) == S_OK, "QelBuildHelper let go");
    Check(Holders == 0, "no reference stays");
}

static void WalkInfo(QelPlugin* myPlugin)
{
    void* theObject = NULL;
    BSTR theText = NULL;
    Check(myPlugin->lpVtbl->QueryInterface(myPlugin, &IID_QelInfo, &theObject) == S_OK, "QueryInterface of QelInfo");
    if (theObject != NULL)
    {
        QelInfo* myInfo = theObject;
        const HRESULT myResult = myInfo->lpVtbl->get_Version(myInfo, &theText);
        CheckText(myResult, theText, u"1.0.", "Version");
        Check(myInfo->lpVtbl->About != NULL, "About");
        Check(myInfo->lpVtbl->AddRef(myInfo) > myInfo->lpVtbl->Release(myInfo), "AddRef and Release");
        myInfo->lpVtbl->Release(myInfo);
    }
}

static void WalkPlugin(DllGetClassObjectFunction myGetClassObject)
{
    void* theObject = NULL;
    Check(myGetClassObject(&CLSID_Main, &IID_IClassFactory, &theObject) == S_OK, "DllGetClassObject");
    if (theObject == NULL)
    {
        return;
    }
    IClassFactory* myFactory = theObject;
    Check(myFactory->lpVtbl->LockServer(myFactory, 1) == S_OK, "LockServer 1");
    Check(myFactory->lpVtbl->LockServer(myFactory, 0) == S_OK, "LockServer 0");
    Check(myFactory->lpVtbl->CreateInstance(myFactory, NULL, &IID_QelPlugin, &theObject) == S_OK, "CreateInstance");
    myFactory->lpVtbl->Release(myFactory);
    if (theObject != NULL)
    {
        QelPlugin* myPlugin = theObject;
        WalkTexts(myPlugin);
        WalkAnswers(myPlugin);
        WalkDispatch(myPlugin);
        WalkServices(myPlugin);
        WalkInfo(myPlugin);
        Check(myPlugin->lpVtbl->Release(myPlugin) == 0, "the last Release");
    }
}

int main(int myCount, char** myArguments)
{
    void* const myLibrary = myCount == 2 ? dlopen(myArguments[1], RTLD_NOW | RTLD_LOCAL) : NULL;
    if (myLibrary == NULL)
    {
        fprintf(stderr, "%s\n", myCount == 2 ? dlerror() : "usage: slots COMPONENT");
        return EXIT_FAILURE;
    }
    /* C has no conversion between what dlsym gives and a function; the system says that they are alike. */
    DllGetClassObjectFunction myGetClassObject = NULL;
    DllCanUnloadNowFunction myCanUnloadNow = NULL;
    *(void**)&myGetClassObject = dlsym(myLibrary, "DllGetClassObject");
    *(void**)&myCanUnloadNow = dlsym(myLibrary, "DllCanUnloadNow");
    Check(myGetClassObject != NULL && myCanUnloadNow != NULL, "entry points");
    if (Failures == 0)
    {
        WalkPlugin(myGetClassObject);
        Check(myCanUnloadNow() == S_OK, "DllCanUnloadNow");
    }
    dlclose(myLibrary);
    return Failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
