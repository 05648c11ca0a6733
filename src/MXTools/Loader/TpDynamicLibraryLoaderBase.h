// The shared load of one run-time library and the table of functions that is bound to it.
#pragma once

#include <boost/noncopyable.hpp>
#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>
#include <cstring>

#include "MXTools/DynamicLibraryLoader.h"
#include "MXTools/Failure.h"
#include "MXTools/TpArrayDynamic.h"

/// Counts the users of one library. A concrete wrapper T derives from it, adds a static pointer for each
/// function and says in BindFunctions which they are.
///
/// Ownership  an object is a ticket for at most one reference, which CloseLibrary or the destructor of T
///            gives back. The statics are not destroyed at exit: a thread that outlives main finds them
///            whole.
/// Threads    opening and closing are thread-safe. Function pointers are written by the first open and
///            cleared by the last close only, and are read without a lock by whoever holds a reference.
/// Errors     ClExDynamicLibraryLoadFail -200 without the library, -206 without a required function; nothing
///            is then loaded or bound.
template <typename T>
class TpDynamicLibraryLoaderBase : private boost::noncopyable {
 public:
  virtual ~TpDynamicLibraryLoaderBase() { CloseQuietly(); }

  /// The first open loads and binds; the search path of a later one is not looked at. An object that holds a
  /// reference takes no other.
  void OpenLibrary(const char* szSearchPath, const char* szName) {
    ClStatics& rStatics = Statics();
    const boost::lock_guard<boost::mutex> oLock(rStatics.sm_oTpDynamicLibraryLoaderMutex);
    if (m_bOpen) return;
    if (rStatics.sm_nRefCount == 0) {
      rStatics.sm_oDynamicLibraryLoaderHandleManager.Open(szSearchPath, szName);
      rStatics.sm_szDynamicLibraryName[0] = 0;
    }
    ++rStatics.sm_nRefCount;
    m_bOpen = true;
    if (rStatics.sm_nRefCount != 1) return;
    TpUndo oUndo([this] { ReleaseQuietly(); });
    BindFunctions();
    oUndo.Dismiss();
  }

  /// Gives the object's reference back, if it holds one. Errors: -204, with the library let go all the same.
  void CloseLibrary() {
    const boost::lock_guard<boost::mutex> oLock(Statics().sm_oTpDynamicLibraryLoaderMutex);
    Release();
  }

  bool IsOpen() const { return m_bOpen; }

  static unsigned int ReferenceCount() {
    const boost::lock_guard<boost::mutex> oLock(Statics().sm_oTpDynamicLibraryLoaderMutex);
    return Statics().sm_nRefCount;
  }

 protected:
  TpDynamicLibraryLoaderBase() = default;

  /// Binds the functions by the two calls below; runs under the mutex.
  virtual void BindFunctions() = 0;

  template <typename F>
  static void GetFunction(F& rFunction, const char* szName) {
    Remember(reinterpret_cast<void**>(&rFunction));
    Statics().sm_oDynamicLibraryLoaderHandleManager.GetFunction(rFunction, szName);
  }
  template <typename F>
  static void GetOptionalFunction(F& rFunction, const char* szName) {
    Remember(reinterpret_cast<void**>(&rFunction));
    Statics().sm_oDynamicLibraryLoaderHandleManager.GetOptionalFunction(rFunction, szName);
  }

  void CloseQuietly() {
    const boost::lock_guard<boost::mutex> oLock(Statics().sm_oTpDynamicLibraryLoaderMutex);
    ReleaseQuietly();
  }

 private:
  struct ClStatics {
    boost::mutex sm_oTpDynamicLibraryLoaderMutex;  ///< guards all of these; taken before the loader's own
    ClDynamicLibraryLoader sm_oDynamicLibraryLoaderHandleManager;
    TpArrayDynamic<void**, 10> sm_aFunctions;
    unsigned int sm_nRefCount = 0;
    char sm_szDynamicLibraryName[FileSystem::cnMaxPath] = "";
  };

  static ClStatics& Statics() {
    static ClStatics* const pStatics = new ClStatics;
    return *pStatics;
  }

  static void Remember(void** pFunction) {
    TpArrayDynamic<void**, 10>& rFunctions = Statics().sm_aFunctions;
    for (unsigned int n = 0; n < rFunctions.Entries(); ++n)
      if (rFunctions[n] == pFunction) return;
    rFunctions.Add(pFunction);
  }

  void Release() {
    if (!m_bOpen) return;
    m_bOpen = false;
    ClStatics& rStatics = Statics();
    if (--rStatics.sm_nRefCount != 0) return;
    // A call after the close must find NULL, not unloaded code.
    void* const pNone = nullptr;
    for (unsigned int n = 0; n < rStatics.sm_aFunctions.Entries(); ++n)
      std::memcpy(rStatics.sm_aFunctions[n], &pNone, sizeof(pNone));
    rStatics.sm_aFunctions.Clear();
    rStatics.sm_szDynamicLibraryName[0] = 0;
    rStatics.sm_oDynamicLibraryLoaderHandleManager.Close();
  }

  void ReleaseQuietly() {
    try {
      Release();
    } catch (...) {
      // The reference is given back; whether the linker unloads the library no longer matters to its holder.
    }
  }

  bool m_bOpen = false;
};
