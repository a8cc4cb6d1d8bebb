/// Message boxes.
#pragma once

#include "text/text.h"

#include <cstdint>

namespace qel
{

/// Style 64 has the OK button and the information icon, style 33 OK and Cancel and the question icon.
inline constexpr int32_t InformationStyle = 64;
inline constexpr int32_t QuestionStyle = 33;
inline constexpr int32_t PressedOK = 1;
inline constexpr int32_t PressedCancel = 2;

class MessageBox
{
public:
    virtual ~MessageBox() = default;

    /// Shows a message without an owner window and waits for the answer: PressedOK or PressedCancel. On the thread that
    /// owns the process's windows.
    /// Error 53: the window module is not installed. 57: there is no display. 5: another thread owns the windows.
    virtual int32_t MsgBox(TextView myText, int32_t myStyle) = 0;
};

} // namespace qel
