/// The host's window for links: what it offers, the window module as it is built, worked with mouse and keys, and the
/// link texts that come of it.
#include "DialogUser.h"
#include "Environment.h"
#include "site/PageText.h"
#include "text/encodings.h"
#include "window/linkWindowModule.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <QAccessible>
#include <QLineEdit>
#include <QTreeWidget>

namespace qel::host
{

namespace
{

/// A site with a record of each kind, the uid one above the kind's number.
std::vector<Record> AllKinds()
{
    return {{1, RecordKind::None, "Later", "", "", ""},
            {2, RecordKind::Page, "", "index.html", "", ""},
            {3, RecordKind::Section, "Noticias", "index.html", "#news", ""},
            {4, RecordKind::Address, "Two\nlines", "", "https://example.org/", ""},
            {5, RecordKind::Picture, "Foto", "", "", "foto.jpg"},
            {6, RecordKind::File, "Lista", "", "", "lista.pdf"},
            {7, RecordKind::Mail, "Yo", "", "me@example.org", ""}};
}

TEST(OfferedLinks, Rows_NameEachKindOfRecord)
{
    std::vector<std::string> myShown;
    for (const LinkRow& myRow : OfferedLinks(AllKinds(), u"").Rows)
    {
        myShown.push_back(ToUtf8(JoinTexts({myRow.Kind, u"|", myRow.Name, u"|", myRow.Address})));
    }
    EXPECT_EQ(myShown,
              (std::vector<std::string>{"none|Later|", "page|record 2|index.html", "section|Noticias|index.html#news",
                                        "address|Two?lines|https://example.org/", "picture|Foto|foto.jpg",
                                        "file|Lista|lista.pdf", "mail|Yo|mailto:me@example.org"}));
}

TEST(OfferedLinks, PresentLink_IsFoundAndLinkOfWritesItAgain)
{
    const struct
    {
        TextView Present;
        std::optional<std::size_t> Row;
        TextView Address;
        bool HasNote;
        TextView Link;
    } Cases[] = {
        {u"", {}, u"", false, u""},
        {u"UID:7", 6, u"", false, u"UID:7"},
        {u"UID:07", {}, u"", true, u""},
        {u"UID:8", {}, u"", true, u""},
        {u"url:x", {}, u"", true, u""},
        {u"URL:", {}, u"", true, u""},
        {u"URL:http://x/?a=1&b=%20ñ", {}, u"http://x/?a=1&b=%20ñ", false, u"URL:http://x/?a=1&#38;b=&#37;20ñ"},
        {u"URL:&#38;amp;&quot;&lt;&#60;", {}, u"&amp;\"<<", false, u"URL:&#38;amp;&#34;&#60;&#60;"},
        {u"URL:&#0;&#300;&#x41;&;", {}, u"&#0;&#300;&#x41;&;", false, u"URL:&#38;#0;&#38;#300;&#38;#x41;&#38;;"},
    };
    for (const auto& myCase : Cases)
    {
        const LinkChoice myOffer = OfferedLinks(AllKinds(), myCase.Present);
        const std::string myName = ToUtf8(myCase.Present);
        EXPECT_EQ(myOffer.Row, myCase.Row) << myName;
        EXPECT_EQ(ToUtf8(myOffer.Address), ToUtf8(myCase.Address));
        EXPECT_EQ(!myOffer.Note.empty(), myCase.HasNote) << myName;
        EXPECT_EQ(ToUtf8(LinkOf(myOffer)), ToUtf8(myCase.Link));
    }
    EXPECT_FALSE(OfferedLinks({}, u"").Note.empty());
}

/// Opens the window of the built module on a present link, and expects a link of it, or "cancelled".
void Choose(TextView myPresentLink, const char* myResult, std::function<void()> myAction)
{
    const Environment myEnvironment{{"QT_QPA_PLATFORM", "offscreen"}};
    void* const myLibrary = dlopen(QEL_STAGE "/qelhostWindow.so", RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(myLibrary, nullptr) << dlerror();
    const auto myEntry = reinterpret_cast<LinkWindowEntry*>(dlsym(myLibrary, LinkWindowEntryName));
    LinkChoice theChoice = OfferedLinks(AllKinds(), myPresentLink);
    const DialogUser myUser({{"ChooseLink", std::move(myAction)}});
    Error theFailure{};
    const LinkWindowEnd theEnd = myEntry(theChoice, theFailure);
    EXPECT_EQ(theEnd == LinkWindowEnd::Confirmed ? ToUtf8(LinkOf(theChoice)) : "cancelled", myResult);
    EXPECT_NE(theEnd, LinkWindowEnd::Failed) << ToUtf8(theFailure.Description);
}

/// Expects the name of the chosen record, and the address in its field.
void ExpectShown(const char* myRecord, const char* myAddress)
{
    const QList<QTreeWidgetItem*> mySelected = Control<QTreeWidget>("records").selectedItems();
    EXPECT_EQ(mySelected.isEmpty() ? "" : mySelected.front()->text(1).toStdString(), myRecord);
    EXPECT_EQ(Control<QLineEdit>("address").text().toStdString(), myAddress);
}

/// What takes the mouse in the list of records, and there the middle of one.
QWidget* Records()
{
    return Control<QTreeWidget>("records").viewport();
}
QPoint PlaceOf(int myRow)
{
    const auto& myList = Control<QTreeWidget>("records");
    return myList.visualItemRect(myList.topLevelItem(myRow)).center();
}

TEST(LinkWindow, Confirm_TakesTheRecordOrAddressChosenLast)
{
    Choose(u"URL:http://x/&#37;20", "UID:5",
           []
           {
               ExpectShown("", "http://x/%20");
               QTest::mouseClick(Records(), Qt::LeftButton, {}, PlaceOf(4));
               ExpectShown("Foto", "");
               Click("confirm");
           });
    Choose(u"UID:6", "URL:https://example.org/?a&#38;b",
           []
           {
               ExpectShown("Lista", "");
               QTest::keyClick(&Control("records"), Qt::Key_A, Qt::AltModifier);
               QTest::keyClicks(QApplication::focusWidget(), " https://example.org/?a&b ");
               ExpectShown("", " https://example.org/?a&b ");
               Key(Qt::Key_Return);
           });
    Choose(u"", "UID:1",
           []
           {
               QTest::mouseClick(Records(), Qt::LeftButton, {}, PlaceOf(0));
               QTest::mouseDClick(Records(), Qt::LeftButton, {}, PlaceOf(0));
           });
}

TEST(LinkWindow, Keyboard_ReachesEveryControlAndEachHasAName)
{
    Choose(
        u"", "UID:2",
        []
        {
            for (const auto& [myControl, myName] :
                 {std::pair("address", "Another address"), {"cancel", "Cancel"}, {"records", "Records of this site"}})
            {
                Key(Qt::Key_Tab); // past the button that cannot be pressed yet
                EXPECT_EQ(QApplication::focusWidget(), &Control(myControl));
                EXPECT_EQ(QAccessible::queryAccessibleInterface(&Control(myControl))->text(QAccessible::Name), myName);
            }
            ExpectShown("", ""); // the focus alone chooses no record
            Key(Qt::Key_Down);
            ExpectShown("Later", "");
            Key(Qt::Key_Down);
            Key(Qt::Key_Return);
        });
}

TEST(LinkWindow, Confirm_NeedsALinkAndCancelIsAlwaysPossible)
{
    Choose(u"UID:99", "cancelled",
           []
           {
               EXPECT_TRUE(Control("note").isVisible());
               EXPECT_FALSE(Control("confirm").isEnabled());
               Key(Qt::Key_Tab);
               Key(Qt::Key_Space);
               Key(Qt::Key_Return);
               EXPECT_TRUE(DialogUser::Front()->isVisible());
               QTest::mouseClick(Records(), Qt::LeftButton, {}, PlaceOf(1));
               EXPECT_TRUE(Control("confirm").isEnabled());
               Control("cancel").setFocus();
               Key(Qt::Key_Return);
           });
}

} // namespace
} // namespace qel::host
