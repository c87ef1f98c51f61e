// The way back from a record to the fields it was built from, and the comparison of a record
// as sent with the record read from the switch. The command line shows a switch's records in
// the same fields an engineer writes (so a saved state can be applied again), and both the
// command line and the wizard's flows judge a read-back by the same rule. Portable.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "acl/acl_mib.h"
#include "acl/acl_record.h"

// The fields that BuildRule turns into `record` (a rule of `ruleType` and `owner` on `model`,
// as built or as read from the switch). `protocol` is the rule's profile's protocol code
// ("UseProtoType" 1..6): it says which cells hold the protocol values. BuildRule of the result
// sends the same values as `record` does.
RuleFields RuleFieldsFromRecord(AclType ruleType, AclOwner owner, const ModelEntry& model,
                                const AclRecord& record, std::string_view protocol);
// The same for a profile: BuildProfile of the result sends what `record` sends.
ProfileFields ProfileFieldsFromRecord(AclType type, AclOwner owner, const ModelEntry& model,
                                      const AclRecord& record);

// The cells of `wanted` (a record about to be sent, or sent) that the switch's `actual` record
// does not hold: every cell the writer sends, compared as it travels (so "1-3" and "1,2,3,",
// a mask in any case and the trailing blank of a protocol mask read back are the same value).
// The row status compares as active. Empty when the switch holds the record.
std::vector<size_t> DiffRecordCells(const ModelEntry& model, const AclTableLayout& table,
                                    const AclRecord& wanted, const AclRecord& actual);

// A port list in its shortest form: "1,2,3,4,8," and "1-4,8" both give "1-4,8". Texts that
// are not a port list come back as they are.
std::string CompactPortList(std::string_view list);
