#include "platform/linux/window/appearance.h"

#include "platform/linux/toolkit/toolkitText.h"
#include "resources/formLayout.h"
#include "resources/pictures.h"

#include <algorithm>
#include <map>
#include <QApplication>
#include <QImage>
#include <QLocale>
#include <QScreen>
#include <QStyle>
#include <QStyleFactory>

namespace qel
{
namespace
{

constexpr double PixelsPerPoint = 96.0 / 72.0;

QStyle& FormStyle()
{
    static QStyle* const theStyle = QStyleFactory::create("Fusion");
    return *theStyle;
}

struct RoleColour
{
    QPalette::ColorRole Role = QPalette::NoRole;
    QColor Colour;
    QColor Disabled;
};

/// All the light colours of the toolkit's style, but set by us: the style's own colours follow the desktop, which may
/// be dark. If the application has the same colours, all windows share what the style has cached.
QPalette FormPalette()
{
    const QColor myFore(MainFormLayout.ForeColour);
    const QColor myFace(MainFormLayout.BackColour);
    const QColor myPale(0xBEBEBE);
    const QColor myWhite(White);
    const QColor myMid = myFace.darker(130);
    const QColor myDark = myFace.darker(150);
    const QColor myShadow = myDark.darker(135);
    QPalette thePalette(myFore, myFace, myFace.lighter(150), myDark, myMid, myFore, myWhite);
    const RoleColour myColours[] = {
        {QPalette::WindowText, myFore, myPale},
        {QPalette::Text, myFore, myPale},
        {QPalette::ButtonText, myFore, myPale},
        {QPalette::Base, myWhite, myFace},
        {QPalette::Midlight, myMid.lighter(110), myMid.lighter(110)},
        {QPalette::Dark, myDark, QColor(0xD1D1D1).darker(110)},
        {QPalette::Shadow, myShadow, myShadow.lighter(150)},
        {QPalette::Highlight, QColor(0x308CC6), QColor(0x919191)},
        {QPalette::HighlightedText, myWhite, myWhite},
    };
    for (const RoleColour& myColour : myColours)
    {
        thePalette.setColor(myColour.Role, myColour.Colour);
        thePalette.setColor(QPalette::Disabled, myColour.Role, myColour.Disabled);
    }
    QColor myFaint = myFore;
    myFaint.setAlpha(128);
    thePalette.setColor(QPalette::PlaceholderText, myFaint);
    return thePalette;
}

QRgb ColourOf(char mySign)
{
    const auto* const myColour = std::ranges::find(PixelColours, mySign, &PixelColour::Sign);
    return myColour == PixelColours.end() ? qRgba(0, 0, 0, 0) : 0xFF000000U | myColour->Colour;
}

QPixmap Drawn(std::span<const std::string_view> myRows)
{
    QImage theImage(static_cast<int>(myRows.front().size()), static_cast<int>(myRows.size()), QImage::Format_ARGB32);
    for (int myTop = 0; myTop < theImage.height(); ++myTop)
    {
        for (int myLeft = 0; myLeft < theImage.width(); ++myLeft)
        {
            theImage.setPixel(myLeft, myTop, ColourOf(myRows[static_cast<size_t>(myTop)][static_cast<size_t>(myLeft)]));
        }
    }
    return QPixmap::fromImage(theImage);
}

} // namespace

QFont FormFont(int32_t myWeight)
{
    QFont theFont;
    // The two others are as narrow as the first, which most systems do not have.
    theFont.setFamilies({ToToolkit(MainFormLayout.FontName), "DejaVu Sans Condensed", "Liberation Sans"});
    theFont.setPixelSize(qRound(MainFormLayout.FontPoints * PixelsPerPoint));
    // What is not set here would come from the font of the host or of the desktop.
    theFont.setWeight(static_cast<QFont::Weight>(myWeight));
    theFont.setItalic(false);
    theFont.setUnderline(false);
    theFont.setOverline(false);
    theFont.setStrikeOut(false);
    theFont.setStretch(QFont::AnyStretch); // a narrow family is one of another stretch
    theFont.setCapitalization(QFont::MixedCase);
    theFont.setLetterSpacing(QFont::AbsoluteSpacing, 0);
    theFont.setWordSpacing(0);
    return theFont;
}

void ApplyFormLook(QWidget& theWindow)
{
    theWindow.setLocale(QLocale(QLocale::Spanish, QLocale::Spain));
    theWindow.setFont(FormFont());
    theWindow.setPalette(FormPalette());
    theWindow.setAttribute(Qt::WA_QuitOnClose, false);
    // If the host owns the application object, the style is the host's, and widgets do not inherit the style of their
    // parent.
    if (QApplication::style()->name() != FormStyle().name())
    {
        theWindow.setStyle(&FormStyle());
        for (QWidget* const myPart : theWindow.findChildren<QWidget*>())
        {
            myPart->setStyle(&FormStyle());
        }
    }
}

void FitCaption(QWidget& theWidget)
{
    // Below three quarters of its width a font is hard to read; then the letters move closer together.
    constexpr int LeastStretch = 75;
    constexpr double LeastSpacing = -1.5;
    const auto Fits = [&]
    {
        const int myNeed =
            theWidget.hasHeightForWidth() ? theWidget.heightForWidth(theWidget.width()) : theWidget.sizeHint().width();
        return myNeed <= (theWidget.hasHeightForWidth() ? theWidget.height() : theWidget.width());
    };
    QFont myFont = theWidget.font();
    myFont.setStretch(QFont::AnyStretch);
    myFont.setLetterSpacing(QFont::AbsoluteSpacing, 0);
    theWidget.setFont(myFont);
    for (int myStretch = QFont::Unstretched; !Fits() && myStretch > LeastStretch;)
    {
        myStretch -= 5;
        myFont.setStretch(myStretch);
        theWidget.setFont(myFont);
    }
    for (double mySpacing = 0; !Fits() && mySpacing > LeastSpacing;)
    {
        mySpacing -= 0.25;
        myFont.setLetterSpacing(QFont::AbsoluteSpacing, mySpacing);
        theWidget.setFont(myFont);
    }
}

void MoveOntoScreen(QWidget& theWindow)
{
    const QRect myScreen = theWindow.screen()->availableGeometry();
    const QSize myFrame = theWindow.frameGeometry().size();
    const QPoint myLast(myScreen.right() + 1 - myFrame.width(), myScreen.bottom() + 1 - myFrame.height());
    // The later bound wins: if there is not enough room, the top left corner is visible.
    theWindow.move(std::max(std::min(theWindow.x(), myLast.x()), myScreen.left()),
                   std::max(std::min(theWindow.y(), myLast.y()), myScreen.top()));
}

QPixmap PixmapOf(std::span<const std::string_view> myRows)
{
    // Each is drawn once: the toolkit caches what it derives from an icon, and would do so for every new one. Never
    // deleted, like the application.
    static auto& thePixmaps = *new std::map<const std::string_view*, QPixmap>;
    QPixmap& thePixmap = thePixmaps[myRows.data()];
    if (thePixmap.isNull())
    {
        thePixmap = Drawn(myRows);
    }
    return thePixmap;
}

} // namespace qel
