// File names, directories and the search along path lists.
#pragma once

extern "C" {
/// Takes the next entry of a list separated by ';' and returns its length, 0 at the end. An entry that does
/// not fit, its closing zero included, is neither copied nor passed; nor is one when szOut is NULL.
///
/// Threads  reentrant.
unsigned int GetNextPath(const char** pszCursor, char* szOut, unsigned int nSize);
/// SearchPath through the current directory, PATH and LD_LIBRARY_PATH.
unsigned int SearchDefaultPath(const char* szName, const char* szExt, unsigned int nSize, char* szOut,
                               char** pszNamePart);
}

/// Both '\\' and '/' separate directories on input; on output there is only '/'.
///
/// Units      sizes count characters, the closing zero included.
/// Threads    reentrant, but for errno and the working directory.
/// Errors     ClExSystem for a failing system call; ClExKelvarin -21 for a buffer too small and -23 for a
///            missing argument.
namespace FileSystem {

/// The longest name that is handled, its closing zero included.
constexpr unsigned int cnMaxPath = 2048;

/// The two characters that separate directories.
inline bool IsSeparator(char cLetter) {
  return cLetter == '/' || cLetter == '\\';
}

void GetCurrentWorkingDirectory(char* szBuffer, unsigned int nSize);
/// Turns backslashes to slashes and a leading "//" to "/"; szOut may be szIn. Gives 0, or the needed size,
/// with nothing written, when szOut is NULL or too small. Errors: ClExKelvarin -37 without szIn.
unsigned int NormalizeFilename(const char* szIn, char* szOut, unsigned int nSize);
unsigned int NormalizeFilename(const wchar_t* wszIn, wchar_t* wszOut, unsigned int nSize);
/// True when the file can be opened for reading.
bool IsFileExistent(const char* szName);
/// Looks for a file in the directories of szPath, separated by ';', in their order; "." is the current
/// directory. A name without '.' gets szExt, when there is one, which must begin with '.'. Gives the length
/// of the full name, 0 when there is none; the name is copied when it fits, and *pszNamePart points to its
/// file part.
unsigned int SearchPath(const char* szPath, const char* szName, const char* szExt, unsigned int nSize,
                        char* szOut, char** pszNamePart);

/// Makes an empty file of a new name from a pattern that ends in XXXXXX; gives the pattern, filled in, or
/// NULL.
char* MakeTempFileName(char* szPattern);
/// The home directory, ending in a separator.
void GetTempFileDir(char* szBuffer, unsigned int nSize);
/// A directory that is there already is no failure. Errors: ClException -101 when there is no parent to make.
void CreateDirectory(const char* szName, bool bRecursive);
/// A directory that is not there is no failure. With bRecursive its content goes first; links go, what they
/// point at stays.
void RemoveDirectory(const char* szName, bool bRecursive);
void RemoveFile(const char* szName);
void RenameFile(const char* szOld, const char* szNew);
/// A copy onto itself does nothing. Errors: ClExFilesystem -200 without the source.
void CopyFile(const char* szFrom, const char* szTo);

/// Replaces the extension of the name, or adds one; the '.' of szExt may be left out.
/// Errors: ClException -101 for an empty name and for one of directories only.
void ChangeExtension(const char* szExt, char* szName, unsigned int nSize);
/// Splits after the last separator, which stays with the path. Either output may be NULL.
void GetPathAndName(const char* szFull, char* szPath, unsigned int nPathSize, char* szName,
                    unsigned int nNameSize);
void GetPath(const char* szFull, char* szPath, unsigned int nSize);
void GetFileName(const char* szFull, char* szName, unsigned int nSize);
/// The file part within the same text.
const char* GetFileName(const char* szFull);
char* GetFileName(char* szFull);
/// The file part up to its last '.'.
void GetFileNameWithoutExt(const char* szFull, char* szName, unsigned int nSize);
/// Appends directories; a path that is not empty ends in a separator afterwards.
void AddPath(char* szPath, unsigned int nSize, const char* szAppend);
/// The relative name counted from the root, which must be absolute and end in a separator; an absolute name
/// is copied.
/// Errors: ClException -101 for a root that is not.
void MakeAbsolutePath(const char* szRoot, const char* szRelative, char* szOut, unsigned int nSize);
/// The inverse: what the absolute name shares with the root is dropped, by whole directories.
void MakeRelativePath(const char* szRoot, const char* szAbsolute, char* szOut, unsigned int nSize);

}  // namespace FileSystem
