/// A page as its author wrote it, with the places that a build fills.
///
/// The places are comments: `<!-- qel:modules -->` and `<!-- qel:modules NAME -->` for the modules of the unnamed place
/// and of a named one, `<!-- qel:title -->` for the site's title, `<!-- qel:menu -->` for the list of its pages. A page
/// without the unnamed place has it right before its last `</body>`, or at its end. Only the first place of a name is
/// filled; the comments never reach the output. Any other comment stays.
///
/// The author's bytes stay as they are. What is put in has the encoding of the page: UTF-8 if its bytes are UTF-8 and
/// not ASCII alone, otherwise Windows-1252. The encoding of a page of ASCII alone cannot be known, so there every other
/// character becomes a numeric character reference, as does one that Windows-1252 lacks.
#pragma once

#include "text/text.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace qel::host
{

class PageText
{
public:
    explicit PageText(std::string theContent);

    bool HasPlace(std::string_view myName) const;

    bool HasMenu() const;

    /// Messages, ready to print, about the comments that begin like a place and are none, such as a mistyped `<!--
    /// qel:modulos -->`, each with its line.
    std::vector<std::string> UnknownComments() const { return myUnknownComments; }

    /// The page with its places filled: modules by the name of their place, and the rest as HTML.
    std::string Filled(const std::map<std::string, Text>& myModules, TextView myTitle, TextView myMenu) const;

    /// A text as it is put into this page.
    std::string Encoded(TextView myText) const;

private:
    enum class PlaceKind
    {
        Modules,
        Title,
        Menu
    };

    struct Place
    {
        std::size_t Start;
        std::size_t End;
        PlaceKind Kind;
        std::string Name;
        bool IsFirst; ///< of its name
    };

    enum class Encoding
    {
        Ascii,
        Utf8,
        Windows1252
    };

    void ReadPlace(std::size_t myStart, std::size_t myEnd);
    void NoteUnknown(std::size_t myStart, std::size_t myEnd);

    std::string myContent;
    Encoding myEncoding;
    std::vector<Place> myPlaces; ///< in the order of the page
    std::vector<std::string> myUnknownComments;
};

/// Passes when the bytes can be a page. Failure: they are neither UTF-8 nor text with one byte per character.
void DemandPageContent(std::string_view myContent);

/// The UTF-8 text with the characters escaped that mean something to HTML, to a script that has the HTML in a quoted
/// text, or to the component's templates.
std::string EscapedForHtml(std::string_view myText);

/// A file name, percent-encoded for the address of a link: each byte of its UTF-8 that has a meaning in an address, or
/// is not ASCII, becomes "%" and two hexadecimal digits.
std::string EncodedForAddress(std::string_view myName);

/// Undoes this escaping, also in the forms that authors use: each reference to an ASCII character becomes that
/// character.
std::string UnescapedFromHtml(std::string_view myText);

} // namespace qel::host
