/// Splits the inner text of one tag, without its opening mark and ">", into a tag name and attributes.
///
/// No text is an error: malformed input has a defined reading. Attribute names are kept in lower case and without
/// blanks at their ends, values as they stand, still escaped. Attributes count from 0. One object serves many tags and
/// reuses its memory. An object is used by one thread at a time.
#pragma once

#include "text/text.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace qel
{

class classTag
{
public:
    /// The text last written, unchanged.
    const Text& Tag() const { return myTag; }

    /// Stores the text and parses it at once.
    void Tag(TextView theTag);

    /// The tag name, in the case of the text.
    const Text& BaseTag() const { return myBaseTag; }

    /// Replaces the tag name alone; text and attributes stay.
    void BaseTag(TextView theBaseTag) { myBaseTag = theBaseTag; }

    /// The number of attributes. Error 6: more than 255, although QueryAttribute sees them all.
    uint8_t AttributeCount() const;

    /// The name or the still escaped value of an attribute. `num` lies below AttributeCount; the entries behind are the
    /// empty text or what an earlier tag left. Error 9: outside the table, which ends one entry behind the last
    /// attribute of the last tag that had any.
    Text AttributeName(int32_t num) const;
    Text AttributeValue(int32_t num) const;

    /// The value of the first attribute of that name, found without regard to case; unescaped unless `noUnquote`. The
    /// empty text when there is none. The view holds until the next tag is written.
    TextView QueryAttribute(TextView theAttribute, bool noUnquote) const;

    /// The text with "&quot;", "&gt;", "&lt;" and then "&amp;" turned back into their characters.
    static Text UnQuote(TextView myText);

private:
    /// Where a piece of a tag's text lies.
    struct Span
    {
        size_t Start = 0;
        size_t Length = 0;
    };

    /// An attribute as it was written.
    struct Attribute
    {
        Span Name;
        Span Value;
        mutable std::optional<Span> Plain; ///< the unescaped value, once it was asked for, where it is another text
        bool NameIsClean = true;           ///< callers know the name just as it was written
    };

    static TextView Part(TextView myText, Span mySpan);
    bool IsNamed(const Attribute& myAttribute, TextView myWanted) const;
    TextView PlainValue(const Attribute& myAttribute) const;
    void ParseAttributes(size_t myPosition);
    size_t ParseValue(size_t myPosition, Span& theValue) const;
    void KeepEntryBehind(size_t myFormerCount);
    size_t DemandEntry(int32_t num) const;
    TextView TableText() const { return myAttributeCount > 0 ? myTag : myFormerTag; }

    Text myTag;
    Text myBaseTag;
    mutable Text myPlainValues; ///< has room for those of all attributes, so that views into it hold
    size_t myAttributeCount = 0;
    // The table that a caller can reach is that of the last tag with attributes, and one entry behind it.
    Text myFormerTag; ///< the text that the table lies in when the tag has no attributes
    std::vector<Attribute> myTable;
    size_t myTableCount = 0; ///< how many entries the last tag with attributes filled
    Text myNameBehind;
    Text myValueBehind;
};

} // namespace qel
