// File names, directories and the search along path lists.
#pragma once

extern "C" {
/// Takes the next entry of a list parted by ';' and gives its length, 0 at the end. An entry that does not
/// fit, its closing zero included, is neither copied nor passed; nor is one when szOut is NULL.
///
/// Threads  reentrant.
unsigned int GetNextPath(const char** pszCursor, char* szOut, unsigned int nSize);
/// SearchPath through the current directory, PATH and LD_LIBRARY_PATH.
unsigned int SearchDefaultPath(const char* szName, const char* szExt, unsigned int nSize, char* szOut,
                               char** pszNamePart);
}

/// Both '\\' and '/' part directories on input; '/' is the one written.
///
/// Units      sizes count characters, the closing zero included.
/// Threads    reentrant, but for errno and the working directory.
/// Errors     ClExSystem for a failing system call; ClExKelvarin -21 for a buffer too small.
namespace FileSystem {

/// The longest name that is handled, its closing zero included.
constexpr unsigned int cnMaxPath = 2048;

void GetCurrentWorkingDirectory(char* szBuffer, unsigned int nSize);
/// Turns backslashes to slashes and a leading "//" to "/"; szOut may be szIn. Gives 0, or the needed size,
/// with nothing written, when szOut is NULL or too small. Errors: ClExKelvarin -37 without szIn.
unsigned int NormalizeFilename(const char* szIn, char* szOut, unsigned int nSize);
unsigned int NormalizeFilename(const wchar_t* wszIn, wchar_t* wszOut, unsigned int nSize);
/// True when the file can be opened for reading.
bool IsFileExistent(const char* szName);
/// Looks for a file in the directories of szPath, parted by ';', in their order; "." is the current
/// directory. A name without '.' gets szExt, when there is one, which must begin with '.'. Gives the length
/// of the full name, 0 when there is none; the name is copied when it fits, and *pszNamePart points to its
/// file part.
unsigned int SearchPath(const char* szPath, const char* szName, const char* szExt, unsigned int nSize,
                        char* szOut, char** pszNamePart);

}  // namespace FileSystem
