#pragma once

#include <QString>

#include <ostream>

// Texts read as texts in the failures of the shell's tests.
inline void PrintTo(QString const& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}
