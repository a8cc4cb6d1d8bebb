/// Small functions that the rest of the component shares: tags of the page, truth values as text, addresses, files, the
/// help. None keeps state; each may be called on any thread, those with a port on the port's thread.
#pragma once

#include "text/text.h"

#include <cstdint>
#include <span>

namespace qel
{

class Files;
class HelpViewer;

/// "</", the name and ">".
Text MakeClosingTag(TextView myTagName);

/// An opening tag of the page. `myPairs` holds names and values in turn, an even number of texts, and nothing is
/// escaped. An attribute with an empty value is left out; the value "<blank>" writes it with an empty one.
Text MakeTag(TextView myTagName, std::span<const TextView> myPairs);

/// The opening tag of a link, with the attributes href, onclick, target and class, as far as they are not empty.
Text MakeAnchor(TextView myHref, TextView myOnClick, TextView myClass, TextView myTarget);

/// The opening tag of a script of the page.
Text MakeScriptTag();

/// False for the empty text and "0", blanks at the ends aside; true for every other text.
bool TextToBoolean(TextView myText);

/// "1" or "0".
Text BooleanToText(bool myValue);

/// Both joined with one "/"; one "/" and then one "\" is cut off at each side of the seam.
Text ConcatUrl(TextView myFirst, TextView mySecond);

/// True when the plain file exists under exactly this name and can be opened, which someone else's lock prevents. No
/// error.
bool FileIsReadable(Files& myFiles, TextView myFilename);

/// Copies a file unless its target is readable already. True: the target is there. False: the copy failed; what it has
/// written stays. No error.
bool CopyFileOnce(Files& myFiles, TextView mySource, TextView myTarget);

/// Deletes the files that differ from a name in case alone, and not the one of that name. For a folder whose names come
/// from an archive that somebody else packed: what is written there next shall be the only one of its name. The name
/// holds no wild cards. What cannot be deleted stays. No error.
void DeleteTwins(Files& myFiles, TextView myFilename);

/// Opens a help file at a context number, without waiting. A missing help has no effect.
void ShowHelpTopic(HelpViewer& myViewer, TextView myHelpFile, int32_t myID);

} // namespace qel
