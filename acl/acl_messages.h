// The messages of the rule and profile checks as codes. Each code is the message's ID in the
// plug-in's string table; res/acl_messages.inc holds the texts for both the string table and
// the portable core, so a text has one home.
#pragma once

enum class AclMessage : int {
  kNone = 0,
#define ACL_MESSAGE(name, id, text) name = id,
#include "res/acl_messages.inc"
#undef ACL_MESSAGE
};

// The text of a message exactly as the dialog shows it; "" for kNone.
const char* MessageText(AclMessage message);

// The outcome of a check: kNone when it passed. Converts to the message text (nullptr when
// passed), so `if (const char* m = ValidateRule(...))` reads naturally where no string table
// is at hand (the command line).
struct AclCheck {
  AclMessage code = AclMessage::kNone;
  operator const char*() const { return code == AclMessage::kNone ? nullptr : MessageText(code); }
};
