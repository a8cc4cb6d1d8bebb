/// The settings dialog as tests/data/form.csv describes it, apart from the code.
#pragma once

#include "text/encodings.h"

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace qel
{

/// One control. Lengths in twips, 15 to the pixel; the place of a control in a box counts from the box.
struct FormTableRow
{
    int TabIndex; ///< -1: none
    std::string Name;
    std::string Kind;
    Text Caption;          ///< "&" marks the access key
    std::string AccessKey; ///< with Alt; empty: none
    int Left, Top, Width, Height;
    std::string Parent; ///< the box that the control lies in; empty: the form
};

/// All rows, in the order of the file.
inline std::vector<FormTableRow> FormTable()
{
    std::vector<FormTableRow> theRows;
    std::ifstream myFile(QEL_TEST_DATA "/form.csv", std::ios::binary);
    std::string myLine;
    for (std::getline(myFile, myLine); std::getline(myFile, myLine);)
    {
        std::istringstream myRow(myLine);
        const auto Next = [&]
        {
            std::string theField;
            std::getline(myRow, theField, ';');
            return theField;
        };
        const auto NextNumber = [&]
        {
            const std::string myField = Next();
            return myField == "none" ? -1 : std::stoi(myField);
        };
        theRows.push_back({NextNumber(), Next(), Next(), FromUtf8(Next()), Next(), NextNumber(), NextNumber(),
                           NextNumber(), NextNumber(), Next()});
    }
    return theRows;
}

} // namespace qel
