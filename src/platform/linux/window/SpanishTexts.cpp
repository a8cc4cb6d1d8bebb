#include "platform/linux/window/SpanishTexts.h"

#include <algorithm>
#include <QCoreApplication>
#include <string_view>

namespace qel
{
namespace
{

struct ToolkitText
{
    std::string_view English;
    const char* Spanish;
};

/// Each of these means the same wherever the toolkit uses it.
constexpr ToolkitText Texts[] = {
    // The file dialog
    {"Look in:", "Buscar en:"},
    {"File &name:", "&Nombre:"},
    {"Files of type:", "Tipo:"},
    {"Open", "Abrir"},
    {"&Open", "&Abrir"},
    {"Cancel", "Cancelar"},
    {"&Cancel", "&Cancelar"},
    {"&Choose", "&Seleccionar"},
    {"OK", "Aceptar"},
    {"&OK", "&Aceptar"},
    {"Back", "Atrás"},
    {"Go back", "Ir a la carpeta anterior"},
    {"Forward", "Adelante"},
    {"Go forward", "Ir a la carpeta siguiente"},
    {"Parent Directory", "Carpeta superior"},
    {"Go to the parent directory", "Ir a la carpeta superior"},
    {"Create New Folder", "Crear una carpeta"},
    {"Create a New Folder", "Crear una carpeta nueva"},
    {"New Folder", "Carpeta nueva"},
    {"&New Folder", "Carpeta &nueva"},
    {"List View", "Vista de lista"},
    {"Change to list view mode", "Cambiar a la vista de lista"},
    {"Detail View", "Vista detallada"},
    {"Change to detail view mode", "Cambiar a la vista detallada"},
    {"Sidebar", "Barra lateral"},
    {"List of places and bookmarks", "Lista de lugares y marcadores"},
    {"Files", "Archivos"},
    {"Computer", "Equipo"},
    {"My Computer", "Equipo"},
    {"Recent Places", "Lugares recientes"},
    {"Show ", "Mostrar "},
    {"Show &hidden files", "Mostrar los archivos &ocultos"},
    {"&Rename", "Cambiar de &nombre"},
    {"&Delete", "&Eliminar"},
    {"Remove", "Quitar"},
    {"%1\nFile not found.\nPlease verify the correct file name was given.",
     "%1\nNo se encuentra el archivo.\nCompruebe que el nombre sea correcto."},
    {"%1\nDirectory not found.\nPlease verify the correct directory name was given.",
     "%1\nNo se encuentra la carpeta.\nCompruebe que el nombre sea correcto."},
    // Its columns and their contents
    {"Name", "Nombre"},
    {"Size", "Tamaño"},
    {"Type", "Tipo"},
    {"Kind", "Tipo"},
    {"Date Modified", "Modificado"},
    {"Drive", "Unidad"},
    {"Folder", "Carpeta"},
    {"File Folder", "Carpeta"},
    {"File", "Archivo"},
    {"%1 File", "Archivo %1"},
    {"Shortcut", "Acceso directo"},
    {"Alias", "Acceso directo"},
    {"Unknown", "Desconocido"},
    // Menus of a line of text
    {"&Undo", "&Deshacer"},
    {"&Redo", "&Rehacer"},
    {"Cu&t", "Cor&tar"},
    {"&Copy", "&Copiar"},
    {"&Paste", "&Pegar"},
    {"Delete", "Eliminar"},
    {"Select All", "Seleccionar todo"},
    {"&Select All", "&Seleccionar todo"},
    {"&Step up", "&Aumentar"},
    {"Step &down", "&Reducir"},
    // Menu of a scroll bar
    {"Scroll here", "Desplazar hasta aquí"},
    {"Top", "Principio"},
    {"Bottom", "Final"},
    {"Left edge", "Borde izquierdo"},
    {"Right edge", "Borde derecho"},
    {"Page up", "Página anterior"},
    {"Page down", "Página siguiente"},
    {"Page left", "Página a la izquierda"},
    {"Page right", "Página a la derecha"},
    {"Scroll up", "Desplazar hacia arriba"},
    {"Scroll down", "Desplazar hacia abajo"},
    {"Scroll left", "Desplazar hacia la izquierda"},
    {"Scroll right", "Desplazar hacia la derecha"},
    // What a screen reader says of an arrow
    {"Open the combo box selection popup", "Abrir la lista"},
};

} // namespace

SpanishTexts::SpanishTexts()
{
    QCoreApplication::installTranslator(this);
}

SpanishTexts::~SpanishTexts()
{
    QCoreApplication::removeTranslator(this);
}

QString SpanishTexts::translate(const char* myContext, const char* mySource, const char*, int) const
{
    const std::string_view myClass = myContext == nullptr ? "" : myContext;
    if (!myClass.starts_with('Q') || myClass == "QShortcut" || mySource == nullptr)
    {
        return {}; // the texts of the host, and the names of keys
    }
    const auto* const myFound = std::ranges::find(Texts, std::string_view(mySource), &ToolkitText::English);
    return myFound == std::end(Texts) ? QString() : QString::fromUtf8(myFound->Spanish);
}

} // namespace qel
