#include "acl/acl_messages.h"

const char* MessageText(AclMessage message) {
  switch (message) {
    case AclMessage::kNone: return "";
#define ACL_MESSAGE(name, id, text) \
    case AclMessage::name: return text;
#include "res/acl_messages.inc"
#undef ACL_MESSAGE
  }
  return "";
}
