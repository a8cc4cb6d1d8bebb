/// The host's window for links: what it offers, the window module as it is built, worked with mouse and keys, and the
/// link texts that come of it.
#include "DialogUser.h"
#include "LinkWindow.h"
#include "PageText.h"

#include <QAccessible>
#include <QTreeWidget>

namespace qel
{

const char16_t* const ErrorSource = u"link_window_test";

namespace host
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

std::string Utf8(const Text& myText)
{
    return ToUtf8(myText);
}

TEST(LinkChoiceTest, OffersEachKindOfRecordAsItsAuthorKnowsIt)
{
    std::string myRows;
    for (const LinkRow& myRow : OfferedLinks(AllKinds(), u"").Rows)
    {
        myRows += Utf8(myRow.Kind + u"|" + myRow.Name + u"|" + myRow.Address + u"\n");
    }
    EXPECT_EQ(myRows, "none|Later|\npage|record 2|index.html\nsection|Noticias|index.html#news\n"
                      "address|Two?lines|https://example.org/\npicture|Foto|foto.jpg\nfile|Lista|lista.pdf\n"
                      "mail|Yo|mailto:me@example.org\n");
}

TEST(LinkChoiceTest, FindsThePresentLinkAndWritesItAgain)
{
    struct Case
    {
        TextView Present;
        std::optional<std::size_t> Row;
        TextView Address;
        bool HasNote;
        TextView Link;
    };
    const Case myCases[] = {
        {u"", {}, u"", false, u""},
        {u"UID:7", 6, u"", false, u"UID:7"},
        {u"UID:07", {}, u"", true, u""},
        {u"UID:8", {}, u"", true, u""},
        {u"url:x", {}, u"", true, u""},
        {u"URL:", {}, u"", true, u""},
        {u"URL:http://x/?a=1&b=%20ñ", {}, u"http://x/?a=1&b=%20ñ", false, u"URL:http://x/?a=1&#38;b=&#37;20ñ"},
        {u"URL:&#38;amp;&quot;&lt;&#60;&#0;&#300;&#x41;&;",
         {},
         u"&amp;\"<<&#0;&#300;&#x41;&;",
         false,
         u"URL:&#38;amp;&#34;&#60;&#60;&#38;#0;&#38;#300;&#38;#x41;&#38;;"},
    };
    for (const Case& myCase : myCases)
    {
        const LinkChoice myOffer = OfferedLinks(AllKinds(), myCase.Present);
        const std::string myName = Utf8(Text(myCase.Present));
        EXPECT_EQ(myOffer.Row, myCase.Row) << myName;
        EXPECT_EQ(Utf8(myOffer.Address), Utf8(Text(myCase.Address)));
        EXPECT_EQ(!myOffer.Note.empty(), myCase.HasNote) << myName;
        EXPECT_EQ(Utf8(LinkOf(myOffer)), Utf8(Text(myCase.Link)));
    }
    EXPECT_FALSE(OfferedLinks({}, u"").Note.empty());
}

/// A step in the window.
Step Window(std::function<void()> myAction)
{
    return {"ChooseLink", std::move(myAction)};
}

/// Opens the window of the built module on a present link. The link that comes of it, or "cancelled".
std::string Chosen(TextView myPresentLink, std::deque<Step> mySteps, const std::vector<Record>& myRecords = AllKinds())
{
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    void* const myLibrary = dlopen((std::string(QEL_STAGE) + "/" + LinkWindowFile).c_str(), RTLD_NOW | RTLD_LOCAL);
    EXPECT_NE(myLibrary, nullptr) << dlerror();
    const auto myEntry = reinterpret_cast<LinkWindowEntry*>(dlsym(myLibrary, LinkWindowEntryName));
    LinkChoice theChoice = OfferedLinks(myRecords, myPresentLink);
    const DialogUser myUser(std::move(mySteps));
    return myEntry(theChoice) ? Utf8(LinkOf(theChoice)) : "cancelled";
}

/// The record that the window shows as chosen, by its name, and the address in its field.
std::string Shown()
{
    const QList<QTreeWidgetItem*> mySelected = Control<QTreeWidget>("records").selectedItems();
    return ((mySelected.isEmpty() ? QString() : mySelected.front()->text(1)) + "|" +
            Control<QLineEdit>("address").text())
        .toStdString();
}

/// The middle of a record's row.
QPoint PlaceOf(int myRow)
{
    const auto& myList = Control<QTreeWidget>("records");
    return myList.visualItemRect(myList.topLevelItem(myRow)).center();
}

void ClickRow(int myRow)
{
    QTest::mouseClick(Control<QTreeWidget>("records").viewport(), Qt::LeftButton, {}, PlaceOf(myRow));
}

void Type(const char* myText)
{
    QTest::keyClicks(QApplication::focusWidget(), myText);
}

TEST(LinkWindowTest, TakesARecordOrAnAddressWhicheverWasChosenLast)
{
    EXPECT_EQ(Chosen(u"URL:http://x/&#37;20", {Window(
                                                  []
                                                  {
                                                      EXPECT_EQ(Shown(), "|http://x/%20");
                                                      ClickRow(4);
                                                      EXPECT_EQ(Shown(), "Foto|");
                                                      Click("confirm");
                                                  })}),
              "UID:5");
    EXPECT_EQ(Chosen(u"UID:6", {Window(
                                   []
                                   {
                                       EXPECT_EQ(Shown(), "Lista|");
                                       Click("address");
                                       Type(" https://example.org/?a&b ");
                                       EXPECT_EQ(Shown(), "| https://example.org/?a&b ");
                                       Click("confirm");
                                   })}),
              "URL:https://example.org/?a&#38;b");
    EXPECT_EQ(Chosen(u"", {Window(
                              []
                              {
                                  ClickRow(0);
                                  QTest::mouseDClick(Control<QTreeWidget>("records").viewport(), Qt::LeftButton, {},
                                                     PlaceOf(0));
                              })}),
              "UID:1");
}

TEST(LinkWindowTest, IsWorkedByKeysAlone)
{
    EXPECT_EQ(Chosen(u"", {Window(
                              []
                              {
                                  for (const char* myName : {"address", "cancel", "records"})
                                  {
                                      Key(Qt::Key_Tab); // past the button that cannot be pressed yet
                                      EXPECT_EQ(QApplication::focusWidget(), &Control(myName));
                                  }
                                  EXPECT_EQ(Shown(), "|") << "the focus alone has chosen a record";
                                  Key(Qt::Key_Down);
                                  EXPECT_EQ(Shown(), "Later|");
                                  Key(Qt::Key_Down);
                                  Key(Qt::Key_Return);
                              })}),
              "UID:2");
    EXPECT_EQ(Chosen(u"UID:3", {Window(
                                   []
                                   {
                                       QTest::keyClick(&Control("records"), Qt::Key_A, Qt::AltModifier);
                                       Type("x");
                                       Key(Qt::Key_Return);
                                   })}),
              "URL:x");
}

TEST(LinkWindowTest, CannotBeConfirmedWithoutALinkAndCancelsAtAnyTime)
{
    EXPECT_EQ(Chosen(u"UID:99", {Window(
                                    []
                                    {
                                        EXPECT_TRUE(Control("note").isVisible());
                                        EXPECT_FALSE(Control("confirm").isEnabled());
                                        Key(Qt::Key_Tab);
                                        Type(" ");
                                        Key(Qt::Key_Return);
                                        EXPECT_TRUE(DialogUser::Front()->isVisible());
                                        ClickRow(1);
                                        EXPECT_TRUE(Control("confirm").isEnabled());
                                        Control("cancel").setFocus();
                                        Key(Qt::Key_Return);
                                    })}),
              "cancelled");
    EXPECT_EQ(Chosen(u"URL:x", {Window([] { Key(Qt::Key_Escape); })}, {}), "cancelled");
}

TEST(LinkWindowTest, NamesEveryControlForAScreenReader)
{
    Chosen(u"", {Window(
                    []
                    {
                        const auto NameOf = [](const char* myControl)
                        {
                            QAccessibleInterface* const myFace =
                                QAccessible::queryAccessibleInterface(&Control(myControl));
                            return myFace->text(QAccessible::Name).toStdString();
                        };
                        EXPECT_EQ(NameOf("records"), "Records of this site");
                        EXPECT_EQ(NameOf("address"), "Another address");
                        EXPECT_EQ(NameOf("confirm") + NameOf("cancel"), "OKCancel");
                        Click("cancel");
                    })});
}

} // namespace
} // namespace host
} // namespace qel
