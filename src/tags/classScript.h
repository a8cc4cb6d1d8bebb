/// Walks a tag script one token at a time.
///
/// Order of calls: Prefix, Script, GetNextTag; then, while TagType is not TokenType::None, read the token and call
/// GetNextTag. No text is an error: malformed input has a defined reading. A script is walked once, forward. An object
/// is used by one thread at a time.
#pragma once

#include "tags/classTag.h"
#include "text/text.h"

#include <cstddef>

namespace qel
{

class MessageQueue;

enum class TokenType : uint8_t
{
    None = 0, ///< the end of the script, or nothing has been scanned yet
    PlainText = 1,
    OpeningTag = 2,
    ClosingTag = 3
};

/// One token of a script.
struct ScriptTag
{
    TextView Value; ///< plain text, or the inner text of a tag
    TokenType Type = TokenType::None;
    /// The line that the token ends on, from 1, as far as it is counted; a line ends with a carriage return.
    mutable int32_t Line = 0;
};

class classScript
{
public:
    /// `myMessages` must outlive the object.
    explicit classScript(MessageQueue& myMessages) : myMessageQueue(myMessages) {}

    /// The text that marks a tag after "<" or "</". It is given in lower case and matched in any case. With the empty
    /// prefix every "<" opens a tag.
    void Prefix(TextView thePrefix) { myPrefix = thePrefix; }

    /// The script, to be walked from its start. It is not copied and must outlive the object, unchanged, also while
    /// window messages are processed. The current token remains until GetNextTag.
    void Script(TextView theScript);

    /// Makes a tag that was kept in advance the current token. Error 9, always: no operation of this class keeps tags.
    [[noreturn]] void GetBufferedTag(int32_t num);

    /// The number of tags that were kept in advance: 0.
    int32_t TagCount() const { return 0; }

    /// Makes the next token the current one, then lets pending window messages run once.
    void GetNextTag();

    /// What the current token is.
    TokenType TagType() const { return myCurrentTag.Type; }

    // The views that the following members return are valid until the next GetNextTag.

    /// The plain text; empty for a tag.
    TextView PlainText() const;

    /// The tag name, in the case of the script; empty for plain text, as are the other members that read a tag.
    TextView BaseTag() const;

    /// The line that the token ends on; 0 when there is none.
    int32_t TagLine() const;

    /// See classTag.
    TextView QueryAttribute(TextView myAttribute, bool noUnquote = false) const;

    /// The number of attributes, 0 for plain text. Error 6: more than 255.
    int32_t AttributeCount() const;

    /// See classTag, errors too; for plain text empty whatever `num` is.
    Text AttributeName(int32_t num) const;
    Text AttributeValue(int32_t num) const;

    /// The token's text: plain text, or a tag's inner text.
    TextView Tag() const { return myCurrentTag.Value; }

    /// QueryAttribute, unescaped.
    TextView ResolveAttribute(TextView myAttributeName) const { return QueryAttribute(myAttributeName); }

private:
    enum class ScanState : uint8_t
    {
        PlainText = 1,
        OpeningTag = 2,
        ClosingTag = 3
    };

    void ScanToken();
    bool ScanPlainText(size_t myStart);
    void ScanTag(size_t myStart);
    ScanState MarkAt(size_t myPosition, size_t& theEnd) const;
    bool IsPrefixAt(size_t myPosition) const;
    void CountLines() const;
    void SetToken(TokenType myType, size_t myStart, size_t myEnd);
    bool IsTag() const { return TagType() == TokenType::OpeningTag || TagType() == TokenType::ClosingTag; }

    MessageQueue& myMessageQueue;
    ScriptTag myCurrentTag;
    classTag myTagParser;
    TextView myScript;
    Text myPrefix;
    size_t myPosition = 0;        ///< how many characters are consumed
    mutable size_t myCounted = 0; ///< how many of them are included in `Line`, which is counted on demand
    ScanState myScanState = ScanState::PlainText;
};

} // namespace qel
