/// A page as its author wrote it, with the places that a build fills.
///
/// The places are comments: `<!-- qel:modules -->` and `<!-- qel:modules NAME -->` for the modules of the unnamed place
/// and of a named one, `<!-- qel:title -->` for the site's title, `<!-- qel:menu -->` for the list of its pages. A page
/// without the unnamed place has it right before its last `</body>`, or at its end. Only the first place of a name is
/// filled; the comments never reach the output. Any other comment stays.
///
/// The author's bytes stay as they are. What is put in is written as they are: as UTF-8 where the page is UTF-8 with
/// more than ASCII in it, otherwise in Windows-1252; and in a page of plain ASCII, whose encoding cannot be told from
/// its bytes, each other character as a numeric character reference, as is one that Windows-1252 has not.
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

    /// The comments that begin like a place and are none, such as a mistyped `<!-- qel:modulos -->`, each with its
    /// line: what is to be told about them, ready to print.
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

/// Passes when the bytes can be a page. Failure: they are not text of one byte or UTF-8.
void DemandPageContent(std::string_view myContent);

/// The UTF-8 text with the characters escaped that mean something to HTML, to a script that has the HTML in a quoted
/// text, or to the component's templates.
std::string EscapedForHtml(std::string_view myText);

/// A file name, percent-encoded for the address of a link: each byte of its UTF-8 that has a meaning in an address, or
/// is not ASCII, becomes "%" and two hexadecimal digits.
std::string EncodedForAddress(std::string_view myName);

/// The text that was escaped so, or as authors write it: what stands for a character of ASCII becomes that character.
std::string UnescapedFromHtml(std::string_view myText);

} // namespace qel::host
