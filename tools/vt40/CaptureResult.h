// What a capture has given: pictures in files, and the facts of it.
#pragma once

#include <string>

#include "Commands.h"
#include "Report.h"
#include "Scanner.h"

/// Writes the pictures of one run as they come, and reports them.
class ClCaptureResult {
 public:
  /// Makes the folder and tries it, before anything is captured that could not be written then. Errors:
  /// ClToolError eExitFile.
  ClCaptureResult(const StCaptureOptions& oOptions, ClReport& oReport);

  /// Writes the picture into the folder under the name. Errors: ClToolError eExitFile.
  void Add(const ClPicture& oPicture, const std::string& sName);
  /// The same into another folder and without a word about it.
  void Keep(const ClPicture& oPicture, const std::string& sFolder, const std::string& sName);
  void SetDelivery(const StDelivery& oDelivery);
  ClReport& Report() { return m_oReport; }

 private:
  StPictureFacts FactsOf() const;

  const StCaptureOptions& m_oOptions;
  ClReport& m_oReport;
};
