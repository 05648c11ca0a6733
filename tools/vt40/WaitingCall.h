// Calls of the library that may wait for long, made so that the tool does not.
#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

/// One thread that makes a scanner's waiting calls, while the tool looks out for signals, and twice a second
/// for the scanner itself in the list of the connected ones: a scan library may keep a call waiting for many
/// seconds after the scanner was unplugged.
///
/// Ownership  a call that is given up goes on in its thread; what it uses must be owned by it.
/// Threads    thread-bound.
class ClWaitingCall {
 public:
  /// The scanner that is looked for.
  explicit ClWaitingCall(std::string sSerial);
  ClWaitingCall(const ClWaitingCall&) = delete;
  ClWaitingCall& operator=(const ClWaitingCall&) = delete;
  /// Ends the thread, or leaves it alone where it is still in a call that was given up.
  ~ClWaitingCall();

  /// Makes the call and returns its result.
  ///
  /// Errors  ClToolError eExitInterrupted or eExitTerminated within half a second of the signal, eExitLost
  ///         within two of the unplugging. The call is given up then, and no further one may be made.
  long Make(std::function<long()> fnCall);

  /// Whether a call was given up and has not returned: the handle that it uses must not be closed.
  bool IsStuck() const;
  /// Whether a thread of any object was left alone.
  static bool IsAnyLeft();

 private:
  struct StState {
    std::mutex oMutex;
    std::condition_variable oChanged;
    std::function<long()> fnCall;  ///< empty while there is nothing to do
    long nResult = 0;
    bool bEnd = false;
  };
  static void Work(const std::shared_ptr<StState>& pState);

  const std::string m_sSerial;
  const std::shared_ptr<StState> m_pState;
  std::thread m_oThread;
};
