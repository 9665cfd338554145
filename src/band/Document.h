// The document on show in a browser window, as far as the navigation guard
// looks into it: the forms of the report page, and whether a pop-up comes
// from something the person did.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarnwick {

class Document {
 public:
  virtual ~Document() = default;
  // Whether the document holds a form of that name.
  virtual bool HasForm(std::string_view form) = 0;
  // The current value of a field of the form; nullopt when the form or the
  // field does not exist.
  virtual std::optional<std::string> FieldValue(std::string_view form, std::string_view field) = 0;
  // False when the form or the field does not exist.
  virtual bool SetFieldValue(std::string_view form, std::string_view field, std::string_view value) = 0;
  virtual bool FocusField(std::string_view form, std::string_view field) = 0;
  // From now on the host tells the band (`oForm_onsubmit`) when this form is
  // submitted.
  virtual void WatchSubmit(std::string_view form) = 0;
  // The type of the event the document's window is handling at this moment
  // ("click", ...): nullopt when it handles none, as when a script runs by
  // itself.
  virtual std::optional<std::string> CurrentEventType() = 0;
  // Whether an element of the document has the focus.
  virtual bool HasActiveElement() = 0;
};

}  // namespace tarnwick
