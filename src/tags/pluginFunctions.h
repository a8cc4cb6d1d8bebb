/// Small functions that the rest of the component shares: tags of the page, Boolean values as text, addresses, files,
/// the help. None keeps state; each may be called on any thread, those with a port on the port's thread.
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

/// An opening tag of the page. `myPairs` holds names and values alternately, an even number of texts; nothing is
/// escaped. An attribute with an empty value is left out; the value "<blank>" writes it with an empty one.
Text MakeTag(TextView myTagName, std::span<const TextView> myPairs);

/// The opening tag of a link, with those of the attributes href, onclick, target and class that are not empty.
Text MakeAnchor(TextView myHref, TextView myOnClick, TextView myClass, TextView myTarget);

/// The opening tag of a script of the page.
Text MakeScriptTag();

/// False for the empty text and "0", blanks at the ends aside; true for every other text.
bool TextToBoolean(TextView myText);

/// "1" or "0".
Text BooleanToText(bool myValue);

/// Both joined with one "/"; before that, one "/" and then one "\" is removed on each side of the join.
Text ConcatUrl(TextView myFirst, TextView mySecond);

/// True when a plain file exists under exactly this name and can be opened; false while someone else holds a lock on
/// it. No error.
bool FileIsReadable(Files& myFiles, TextView myFilename);

/// Copies a file unless its target is readable already. True: the target is there. False: the copy failed; what was
/// written stays. No error.
bool CopyFileOnce(Files& myFiles, TextView mySource, TextView myTarget);

/// Deletes the files whose names differ from a name only in case, but not the file with exactly that name. For a folder
/// whose names come from an archive that somebody else packed: the file that is written next is then the only one of
/// its name. The name contains no wild cards. A file that cannot be deleted stays. No error.
void DeleteCaseVariants(Files& myFiles, TextView myFilename);

/// Opens a help file at a context number, without waiting. A missing help file has no effect.
void ShowHelpTopic(HelpViewer& myViewer, TextView myHelpFile, int32_t myID);

} // namespace qel
