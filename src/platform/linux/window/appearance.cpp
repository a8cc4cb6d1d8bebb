#include "platform/linux/window/appearance.h"

#include "platform/linux/window/toolkitText.h"
#include "resources/formLayout.h"
#include "resources/pictures.h"

#include <algorithm>
#include <map>
#include <QApplication>
#include <QImage>
#include <QLocale>
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
    QPalette::ColorRole Role;
    QRgb Colour;
    QRgb Disabled;
};

/// All of the toolkit's colours: those of its style follow the desktop, which may be a dark one.
constexpr RoleColour FormColours[] = {
    {QPalette::WindowText, MainFormLayout.ForeColour, 0xBEBEBE},
    {QPalette::Window, MainFormLayout.BackColour, MainFormLayout.BackColour},
    {QPalette::Text, MainFormLayout.ForeColour, 0xBEBEBE},
    {QPalette::Base, White, MainFormLayout.BackColour},
    {QPalette::AlternateBase, 0xF7F7F7, 0xF7F7F7},
    {QPalette::PlaceholderText, 0x808080, 0xBEBEBE},
    {QPalette::ButtonText, MainFormLayout.ForeColour, 0xBEBEBE},
    {QPalette::Button, MainFormLayout.BackColour, MainFormLayout.BackColour},
    {QPalette::Light, White, White},
    {QPalette::Midlight, 0xCACACA, 0xCACACA},
    {QPalette::Mid, 0xB8B8B8, 0xB8B8B8},
    {QPalette::Dark, 0x9F9F9F, 0xBEBEBE},
    {QPalette::Shadow, 0x767676, 0xB1B1B1},
    {QPalette::BrightText, White, White},
    {QPalette::Highlight, 0x308CC6, 0x919191},
    {QPalette::HighlightedText, White, White},
    {QPalette::Link, 0x0000FF, 0x0000FF},
    {QPalette::LinkVisited, 0xFF00FF, 0xFF00FF},
    {QPalette::ToolTipBase, 0xFFFFDC, 0xFFFFDC},
    {QPalette::ToolTipText, Black, Black},
};

QPalette FormPalette()
{
    QPalette thePalette;
    for (const RoleColour& myColour : FormColours)
    {
        thePalette.setColor(myColour.Role, QColor(myColour.Colour));
        thePalette.setColor(QPalette::Disabled, myColour.Role, QColor(myColour.Disabled));
    }
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
    // What is not said comes from the font of the host or of the desktop.
    theFont.setWeight(static_cast<QFont::Weight>(myWeight));
    theFont.setItalic(false);
    theFont.setUnderline(false);
    theFont.setOverline(false);
    theFont.setStrikeOut(false);
    theFont.setStretch(QFont::Unstretched);
    theFont.setCapitalization(QFont::MixedCase);
    theFont.setLetterSpacing(QFont::AbsoluteSpacing, 0);
    theFont.setWordSpacing(0);
    return theFont;
}

void Dress(QWidget& theWindow)
{
    theWindow.setLocale(QLocale(QLocale::Spanish, QLocale::Spain));
    theWindow.setFont(FormFont());
    theWindow.setPalette(FormPalette());
    theWindow.setAttribute(Qt::WA_QuitOnClose, false);
    // Where the host owns the application object the style is the host's, and a widget does not hand its own down.
    if (QApplication::style()->name() != FormStyle().name())
    {
        theWindow.setStyle(&FormStyle());
        for (QWidget* const myPart : theWindow.findChildren<QWidget*>())
        {
            myPart->setStyle(&FormStyle());
        }
    }
}

QPixmap PixmapOf(std::span<const std::string_view> myRows)
{
    // Each is drawn once: the toolkit keeps what it makes of an icon, and would do so for every new one. Never deleted,
    // as the application is not.
    static auto& thePixmaps = *new std::map<const std::string_view*, QPixmap>;
    QPixmap& thePixmap = thePixmaps[myRows.data()];
    if (thePixmap.isNull())
    {
        thePixmap = Drawn(myRows);
    }
    return thePixmap;
}

} // namespace qel
