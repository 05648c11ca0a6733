// Conversion between wide text and UTF-8.
#pragma once

#include <string>

/// Converts nInBytes bytes of text into nOutSize bytes at pOut and gives the bytes written; without pOut, the
/// bytes that are needed. The closing zero is converted when it is among the bytes.
///
/// Domain   NULL or no bytes give 0.
/// Threads  reentrant.
/// Errors   -1 when the text is not valid, does not fit, or the conversion is not there; ClExSystem
///          "Conversions Error" while counting.
int ConvertWideCharToSBCS(const wchar_t* wszIn, unsigned int nInBytes, void* pOut, unsigned int nOutSize);
/// The same for UTF-8 text; the result counts characters, not bytes.
int ConvertSBCSToWidechar(const char* szIn, unsigned int nInBytes, void* pOut, unsigned int nOutSize);

/// A whole wide text as UTF-8. Errors: ClExSystem "Conversions Error".
std::string NarrowText(const wchar_t* wszText);
