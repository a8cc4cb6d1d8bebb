/// Text between the logic and the toolkit, which both keep as UTF-16.
#pragma once

#include "text/text.h"

#include <QString>

namespace qel
{

inline QString ToToolkit(TextView myText)
{
    return QString::fromUtf16(myText.data(), static_cast<qsizetype>(myText.size()));
}

inline Text FromToolkit(const QString& myText)
{
    return myText.toStdU16String();
}

} // namespace qel
