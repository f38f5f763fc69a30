#pragma once

#include <ostream>

#include <QString>

// Lets GoogleTest print Qt's strings as text in failure messages.
inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }
