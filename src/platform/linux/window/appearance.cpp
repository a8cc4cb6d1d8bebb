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

QFont FormFont()
{
    QFont theFont;
    // The two others are as narrow as the first, which most systems do not have.
    theFont.setFamilies({ToToolkit(MainFormLayout.FontName), "DejaVu Sans Condensed", "Liberation Sans"});
    theFont.setPixelSize(qRound(MainFormLayout.FontPoints * PixelsPerPoint));
    return theFont;
}

void Dress(QWidget& theWindow)
{
    theWindow.setLocale(QLocale(QLocale::Spanish, QLocale::Spain));
    theWindow.setFont(FormFont());
    theWindow.setPalette(FormStyle().standardPalette());
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
