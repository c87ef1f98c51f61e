// The two operations through which the rest of the system reaches a device, the
// verdict words and the index extraction. Built on CSnmpV1 / CSnmp / CSnmpTable exactly in the
// call order the classic library needs.
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "snmp/snmp_client.h"

// One binding of a set: OID text, type code (1 INTEGER, 2 OCTET STRING, 8 IpAddress) and the
// value: decimal text, text, dotted text, or (raw == true, code 2) bytes of an explicit length.
struct SnmpBinding {
  std::string oid;
  int type = kSnmpInteger;
  std::string value;
  bool raw = false;

  static SnmpBinding Integer(std::string oid, long long v);
  static SnmpBinding Integer(std::string oid, std::string decimalText);
  static SnmpBinding Text(std::string oid, std::string text);
  static SnmpBinding Bytes(std::string oid, std::string bytes);
  static SnmpBinding Bytes(std::string oid, const void* data, size_t length);
  static SnmpBinding IpAddress(std::string oid, std::string dottedText);
};

// The outcome of a set.
struct SnmpSetResult {
  int sendStatus = 0;      // the library's return from send; 0 means an answer arrived
  bool responded = false;  // an answer object was handed out
  int errorStatus = 0;     // the answer's error status, 0 = noError
  int errorIndex = 0;      // 1-based position of the offending binding, 0 when none
};

// One SetRequest with `bindings` in order, to UDP 161 of `agent`, with the write community.
// timeoutMs is 3000 for every caller of the system; tests may shorten it.
SnmpSetResult SnmpSet(const std::string& agent, const std::string& writeCommunity,
                      const std::vector<SnmpBinding>& bindings,
                      unsigned long timeoutMs = kSnmpTimeoutMs);

// One binding of a walked row: the instance OID (dotted text) and the value rendered as
// the client renders it (octet strings as their exact bytes; `value.size()` is their length).
struct SnmpRowBinding {
  std::string oid;
  std::string value;
  int tag = 0;  // the BER tag of the value (snmp::kTagInteger, kTagOctetString, ...)
};

struct SnmpRow {
  std::string index;                    // see SnmpIndexText
  std::vector<SnmpRowBinding> bindings; // one per column, in column order
};

using SnmpRowConsumer = std::function<void(const SnmpRow& row)>;

// How a walk ended. Only the first two mean the table was read to its end; the wizard's
// readers keep the rows read either way, a caller that plans changes from them must not.
enum class SnmpWalkEnd {
  kEndOfTable,     // an answer left the columns
  kEndOfMib,       // noSuchName: nothing follows the table in the agent's MIB (SNMPv1)
  kErrorStatus,    // any other error status (genErr, tooBig, ...)
  kNoAnswer,       // no answer within the time-out; a wrong community looks the same
  kNotSent,        // the request could not be built or sent (bad address or OID, no socket)
  kNotIncreasing,  // an OID did not follow the one asked for: the agent loops
  kUnmatched,      // an answer without bindings, or with more than the columns
  kStopped,        // the caller's stop flag
};

struct SnmpWalkResult {
  size_t rows = 0;                              // passed to the consumer
  SnmpWalkEnd end = SnmpWalkEnd::kEndOfTable;
  int errorStatus = 0;                          // kEndOfMib, kErrorStatus: the agent's status
  bool complete() const { return end == SnmpWalkEnd::kEndOfTable || end == SnmpWalkEnd::kEndOfMib; }
};

// How a walk ended, for messages: "no answer", "error status genErr", "the end of the table"...
std::string SnmpWalkEndText(const SnmpWalkResult& result);
// "noSuchName", "genErr", ... (the number as text for others).
std::string SnmpErrorStatusName(int errorStatus);

// Walks the columns with GetNext, one request per row, calling `consumer` once per row in the
// agent's order. Returns the number of rows passed to the consumer when the walk has ended (end
// of table, error status, time-out, a non-increasing OID, or `stop` set: the walk then ends at
// the next answer, passes no further row and sends no further request); `result`, when given,
// tells which.
size_t SnmpWalk(const std::string& agent, const std::string& readCommunity,
                const std::vector<std::string>& columnOids, const SnmpRowConsumer& consumer,
                unsigned long timeoutMs = kSnmpTimeoutMs, const std::atomic<bool>* stop = nullptr,
                SnmpWalkResult* result = nullptr);

// Index extraction: the row's first binding OID with the first column's OID and the
// "." after it removed from the front ("1.2" for a two-part index). A leading "." on either text
// is ignored. Returns "" when the binding does not lie under the column.
std::string SnmpIndexText(std::string_view firstColumnOid, std::string_view firstBindingOid);

// Verdict words: no answer gives "fail", an answer with a non-zero error status
// "Fail", an answer with status 0 "Succeed" — or "Success" on the one apply path that says so.
enum class SnmpSuccessWord { kSucceed, kSuccess };
const char* SnmpVerdict(const SnmpSetResult& result,
                        SnmpSuccessWord successWord = SnmpSuccessWord::kSucceed);
