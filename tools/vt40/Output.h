// The standard output of the tool: text for people, or JSON for programs and nothing else.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

/// Owns the standard output while the tool runs.
///
/// In the forms of JSON whatever else writes to the standard output, the library with its log above all, is
/// led to the standard error, so that a program reads JSON alone. A reader that goes away is no signal but a
/// failure like a full disk.
///
/// Errors  ClToolError eExitFile when the standard output cannot be written.
class ClOutput {
 public:
  enum EForm { eText, eJson, eJsonLines };

  explicit ClOutput(EForm eForm);
  ClOutput(const ClOutput&) = delete;
  ClOutput& operator=(const ClOutput&) = delete;
  ~ClOutput();

  EForm Form() const { return m_eForm; }
  bool IsJson() const { return m_eForm != eText; }
  /// Text whatever the form.
  void Text(const std::string& sText) { Write(sText); }
  /// A line of text; nothing in the forms of JSON.
  void Line(const std::string& sText);
  /// The document: a line of its own where a run prints several objects, else spread over lines. Bytes that
  /// are no UTF-8 are replaced. Nothing in the form of text.
  void Document(const nlohmann::ordered_json& oJson);
  /// One object of a stream, at once; nothing but with JSON lines.
  void Event(const nlohmann::ordered_json& oJson);

 private:
  void Write(const std::string& sText);

  const EForm m_eForm;
  int m_nFile;  ///< where the results go
};
