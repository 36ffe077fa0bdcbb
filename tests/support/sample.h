#pragma once

#include <QString>

/// The text of a file in tests/data: what a tool once printed.
QString sample(const char* name);
