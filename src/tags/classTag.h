/// Splits the inner text of one tag, without its opening mark and ">", into a tag name and attributes.
///
/// No text is an error: malformed input has a defined reading. Attribute names are kept in lower case and without
/// blanks at their ends, values as they stand, still escaped. Attributes count from 0. One object serves many tags and
/// reuses its memory. An object is used by one thread at a time.
#pragma once

#include "text/text.h"

#include <cstddef>
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
    /// empty text or what an earlier tag left. Error 9: outside the tables, which end one entry behind the last
    /// attribute of the last tag that had any.
    const Text& AttributeName(int32_t num) const;
    const Text& AttributeValue(int32_t num) const;

    /// The value of the first attribute of that name, found without regard to case; unescaped unless `noUnquote`. The
    /// empty text when there is none.
    Text QueryAttribute(TextView theAttribute, bool noUnquote) const;

    /// The text with "&quot;", "&gt;", "&lt;" and then "&amp;" turned back into their characters.
    static Text UnQuote(TextView myText);

private:
    struct Attribute
    {
        Text Name;
        Text Value;
    };

    void ParseTag();
    size_t ParseAttribute(size_t myPosition);
    size_t ParseValue(size_t myPosition);
    void AppendAttribute(TextView myName);
    const Attribute& AttributeAt(int32_t num) const;

    Text myTag;
    Text myBaseTag;
    size_t myAttributeCount = 0;
    size_t myTableSize = 0;              ///< how many entries of the table a caller can reach
    std::vector<Attribute> myAttributes; ///< may be longer than that: entries are kept for their memory
};

} // namespace qel
