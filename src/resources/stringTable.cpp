#include "resources/stringTable.h"

#include "text/errors.h"

#include <algorithm>

namespace qel
{
namespace
{

struct ResourceString
{
    int32_t Number;
    TextView Value;
};

/// In ascending order. Line ends and the blanks before them are spelled out, so that no editor can lose them.
constexpr ResourceString Strings[] = {
    {StringId::Description, u"Mueve objetos gráficos animados en su sitio web."},
    {StringId::Function,
     u"Este plug-in coloca objetos gráficos animados en su sitio web. Si desea obtener más detalles, consulte la "
     u"<help type=\"plugin\" id=\"100\" caption=\"Ayuda del plug-in\">."},
    {StringId::RequirementsClient,
     u"El plug-in requiere que su navegador web sea capaz de ejecutar <b>JavaScript</b>."},
    {StringId::RequirementsServer,
     u"Este plug-in no exige <b>ninguna</b> característica especial para el servidor web utilizado."},
    {StringId::Config, u"Haga clic <callback type=0 icon=1 caption=\"aquí\"> para seleccionar un motivo y una música."},
    {StringId::SummaryNoImage,
     u"<warning>Aún no ha seleccionado ningún motivo que representar. Haga clic <callback type=0 icon=1 "
     u"caption=\"aquí\"> para seleccionar un motivo y una música."},
    {StringId::SummaryLibraryImage, u"Se muestra el motivo <b>\"%1\"</b>. "},
    {StringId::SummaryOwnImage, u"Se muestra el motivo personalizado por el usuario. "},
    {StringId::SummaryImageOff, u"No se muestra ninguna animación. "},
    {StringId::SummaryLibraryMIDI, u"Se reproduce el sonido de fondo <b>\"%1\"</b>. "},
    {StringId::SummaryOwnMIDI, u"Se reproduce un sonido de fondo personalizado por el usuario."},
    {StringId::SummaryMIDIOff, u"No se reproduce ningún sonido de fondo. "},
    {StringId::SummaryPeriod, u"El control de tiempo se ha activado."},
    {StringId::OpenImageTitle, u"Cargar motivo de animación"},
    {StringId::OpenImageFilter,
     u"Todos los formatos de imágenes|*.jpg;*.gif|archivos GIF (*.gif)|*.gif| archivos JPEG (*.jpg)|*.jpg"},
    {StringId::OpenMIDITitle, u"Cargar sonido de fondo"},
    {StringId::OpenMIDIFilter, u"Archivos MIDI (*.mid)|*.mid"},
    {StringId::OutputFailed, u"[Error de plug-in]"},
    {StringId::OutputFailure, u"El plug-in \"Orvenal\" ha provocado el error \"%1\"."},
    {StringId::NoImageChosen, u"No se ha seleccionado ningún motivo."},
    {StringId::LinkIsBroken, u"El vínculo no funciona."},
    {StringId::ImageIsImported, u"Haga clic aquí para importar otra imagen en formato JPEG o GIF como motivo."},
    {StringId::ImageIsNotImported,
     u"Ninguna imagen seleccionada. Haga clic aquí para importar una imagen en formato JPEG o GIF como motivo."},
    {StringId::MIDIIsImported, u"Haga clic aquí para importar otro clip en formato MIDI como sonido de fondo."},
    {StringId::MIDIIsNotImported,
     u"Ningún sonido de fondo seleccionado. Haga clic aquí para importar un clip en formato MIDI como sonido de "
     u"fondo."},
    {StringId::ImportImageFirst, u"Por favor, importe una imagen o seleccione una de la librería."},
    {StringId::ImportMIDIFirst, u"Por favor, importe un sonido de fondo o seleccione uno de la librería."},
    {StringId::ImageIsTooLarge,
     u"El gráfico importado es demasiado grande para poder utilizarlo como motivo de animación. ¿Desea disminuir "
     u"el tamaño del gráfico?"},
    {StringId::PeriodIsReversed, u"El final del periodo de tiempo de reproducción aparece antes del inicio."},
    {StringId::ArchiveNotWritten, u"No se han podido guardar los archivos importados en \"%1\": %2."},
    {StringId::DateNotShown, u"La fecha %1 del periodo de reproducción no se puede mostrar en el cuadro de diálogo. "
                             u"Elimine el plug-in de la página e insértelo de nuevo."},
    {StringId::PageStart, u"var showme%1=true;"},
    {StringId::PageFrom, u"if (new Date()<new Date(%2, %3, %4)) showme%1=false;"},
    {StringId::PageTo, u"if (new Date()>new Date(%2, %3, %4)) showme%1=false;"},
    {StringId::PageImage,
     u"function animmovesprite%1(){ \n"
     u"animdeg%1+=animturn%1; \n"
     u"y=4*Math.sin(animdeg%1*Math.PI/180); \n"
     u"x=6*Math.cos(animdeg%1*Math.PI/180); \n"
     u"animypos%1+=y; \n"
     u"animxpos%1+=x; \n"
     u"animsprite%1.style.top=animypos%1+\"px\"; \n"
     u"animsprite%1.style.left=animxpos%1+\"px\"; \n"
     u"animturn%1treshold++; \n"
     u"if (animturn%1treshold>10) { \n"
     u"animturn%1treshold=0; \n"
     u"animturn%1=Math.round(Math.random()*[6])-3; \n"
     u"} \n"
     u"animedge%1treshold++; \n"
     u"if (animedge%1treshold>3) { \n"
     u"animedge%1treshold=0; \n"
     u"if (animsprite%1.offsetLeft >= animsprite%1.offsetParent.offsetWidth-45-%4) "
     u"animdeg%1=Math.round(Math.random()*45+157.5); \n"
     u"if (animsprite%1.offsetTop >= animsprite%1.offsetParent.offsetHeight-25-%5) "
     u"animdeg%1=Math.round(Math.random()*45-112.5); \n"
     u"if (animsprite%1.offsetTop <= 5) animdeg%1 = Math.round(Math.random()*45+67.5); \n"
     u"if (animsprite%1.offsetLeft <= 5) animdeg%1 = Math.round(Math.random()*45-22.5); \n"
     u"} \n"
     u"setTimeout(\"animmovesprite%1()\",50); \n"
     u"} \n"
     u"function animstartsprite%1(){ \n"
     u"animsprite%1=document.getElementById(\"qelanimsprite%1\"); \n"
     u"animypos%1=10; \n"
     u"animxpos%1=10; \n"
     u"animdeg%1=60; \n"
     u"animturn%1=0; \n"
     u"animturn%1treshold=0; \n"
     u"animedge%1treshold=0; \n"
     u"animmovesprite%1(); \n"
     u"} \n"
     u"if (showme%1) { \n"
     u"document.write('<div id=\"qelanimsprite%1\" "
     u"style=\"position:absolute;top:10px;left:10px;width:%4px;height:%5px;z-index:50\">%2<img src=\"%3\" "
     u"width=\"%4\" height=\"%5\" alt=\"\" border=0>%7</div>'); \n"
     u"animstartsprite%1(); \n"
     u"}"},
    {StringId::PageMIDI, u"if (showme%1) { \n"
                         u"document.write('<embed src=\"%2\" autostart=true loop=false width=0 height=0></embed>'); \n"
                         u"}"},
};

} // namespace

TextView LoadResString(int32_t myNumber)
{
    const auto* myFound = std::lower_bound(std::begin(Strings), std::end(Strings), myNumber,
                                           [](const ResourceString& s, int32_t n) { return s.Number < n; });
    if (myFound == std::end(Strings) || myFound->Number != myNumber)
    {
        Raise(ErrorNumber::InvalidArgument);
    }
    return myFound->Value;
}

} // namespace qel
