#include "snmp/snmp_ops.h"

#include <memory>

SnmpBinding SnmpBinding::Integer(std::string oid, long long v) {
  return SnmpBinding{std::move(oid), kSnmpInteger, std::to_string(v), false};
}
SnmpBinding SnmpBinding::Integer(std::string oid, std::string decimalText) {
  return SnmpBinding{std::move(oid), kSnmpInteger, std::move(decimalText), false};
}
SnmpBinding SnmpBinding::Text(std::string oid, std::string text) {
  return SnmpBinding{std::move(oid), kSnmpOctetString, std::move(text), false};
}
SnmpBinding SnmpBinding::Bytes(std::string oid, std::string bytes) {
  return SnmpBinding{std::move(oid), kSnmpOctetString, std::move(bytes), true};
}
SnmpBinding SnmpBinding::Bytes(std::string oid, const void* data, size_t length) {
  return Bytes(std::move(oid), std::string(static_cast<const char*>(data), length));
}
SnmpBinding SnmpBinding::IpAddress(std::string oid, std::string dottedText) {
  return SnmpBinding{std::move(oid), kSnmpIpAddress, std::move(dottedText), false};
}

SnmpSetResult SnmpSet(const std::string& agent, const std::string& writeCommunity,
                      const std::vector<SnmpBinding>& bindings, unsigned long timeoutMs) {
  SnmpSetResult result;
  // Step 1: type, then clear, then community, in this order.
  CSnmpV1 request(0);
  request.setType(kSnmpSetRequest);
  request.clearVarBindList();
  request.setCommunity(writeCommunity.c_str());
  // Step 2: the bindings in the caller's order; the four-argument form for raw octet strings.
  for (const SnmpBinding& b : bindings) {
    if (b.raw)
      request.addValue(b.oid.c_str(), b.type, b.value.data(),
                       static_cast<unsigned long>(b.value.size()));
    else
      request.addValue(b.oid.c_str(), b.type, b.value.c_str());
  }
  // Steps 3 and 4.
  CSnmp* answer = nullptr;
  result.sendStatus = request.send(agent.c_str(), answer, timeoutMs);
  if (answer != nullptr) {
    result.responded = true;
    answer->getError(result.errorStatus, result.errorIndex);
    delete answer;
    answer = nullptr;
  }
  return result;  // step 5: the request object ends with this scope
}

namespace {

SnmpWalkEnd WalkEnd(int getNextStatus, int errorStatus) {
  switch (getNextStatus) {
    case kSnmpEndOfTable: return SnmpWalkEnd::kEndOfTable;
    case kSnmpAgentError: return errorStatus == snmp::kNoSuchName ? SnmpWalkEnd::kEndOfMib : SnmpWalkEnd::kErrorStatus;
    case kSnmpTimeout: return SnmpWalkEnd::kNoAnswer;
    case kSnmpNotIncreasing: return SnmpWalkEnd::kNotIncreasing;
    case kSnmpUnmatched: return SnmpWalkEnd::kUnmatched;
    default: return SnmpWalkEnd::kNotSent;
  }
}

}  // namespace

size_t SnmpWalk(const std::string& agent, const std::string& readCommunity,
                const std::vector<std::string>& columnOids, const SnmpRowConsumer& consumer,
                unsigned long timeoutMs, const std::atomic<bool>* stop, SnmpWalkResult* result) {
  auto stopped = [stop] { return stop != nullptr && stop->load(); };
  SnmpWalkResult walk;
  CSnmpV1 request(0);
  request.setType(kSnmpGetNextRequest);
  {
    CSnmpTable walker(&request);
    request.clearVarBindList();
    request.setCommunity(readCommunity.c_str());
    for (const std::string& column : columnOids) request.addValue(column.c_str(), kSnmpNull, nullptr);
    if (columnOids.empty()) {
      if (result) *result = walk;  // nothing to walk is a table read to its end
      return 0;
    }

    CSnmp* answer = nullptr;
    SnmpRow row;
    int status = kSnmpOk;
    while (!stopped() && (status = walker.getNext(agent.c_str(), answer, timeoutMs)) == kSnmpOk) {
      std::unique_ptr<CSnmp> owned(answer);
      answer = nullptr;
      if (stopped()) break;
      row.bindings.clear();
      int count = owned->getVarBindCount();
      for (int i = 0; i < count; ++i) {
        char* oid = nullptr;
        char* value = nullptr;
        SnmpRowBinding b;
        if (owned->getOid(i, oid) == 0) {
          b.oid = oid;
          CSnmp::freeText(oid);
        }
        long length = owned->getValueLength(i);
        if (owned->getValue(i, value) == 0) {
          b.value.assign(value, length > 0 ? static_cast<size_t>(length) : 0);
          CSnmp::freeText(value);
        }
        b.tag = owned->getValueType(i);
        row.bindings.push_back(std::move(b));
      }
      row.index = row.bindings.empty() ? std::string()
                                       : SnmpIndexText(columnOids.front(), row.bindings.front().oid);
      ++walk.rows;
      if (consumer) consumer(row);
    }
    delete answer;  // an answer handed out with the final step, if any
    if (status == kSnmpOk) {
      walk.end = SnmpWalkEnd::kStopped;
    } else {
      walk.errorStatus = walker.endErrorStatus();
      walk.end = WalkEnd(status, walk.errorStatus);
    }
  }  // the walker before the request object
  if (result) *result = walk;
  return walk.rows;
}

std::string SnmpErrorStatusName(int errorStatus) {
  static const char* const kNames[] = {"noError", "tooBig", "noSuchName", "badValue", "readOnly", "genErr"};
  return errorStatus >= 0 && errorStatus <= 5 ? kNames[errorStatus] : std::to_string(errorStatus);
}

std::string SnmpWalkEndText(const SnmpWalkResult& r) {
  switch (r.end) {
    case SnmpWalkEnd::kEndOfTable: return "the end of the table";
    case SnmpWalkEnd::kEndOfMib:
    case SnmpWalkEnd::kErrorStatus: return "error status " + SnmpErrorStatusName(r.errorStatus);
    case SnmpWalkEnd::kNoAnswer: return "no answer";
    case SnmpWalkEnd::kNotSent: return "a request that could not be sent";
    case SnmpWalkEnd::kNotIncreasing: return "an OID that did not increase";
    case SnmpWalkEnd::kUnmatched: return "an answer that did not match the columns";
    case SnmpWalkEnd::kStopped: return "a stop";
  }
  return "";
}

std::string SnmpIndexText(std::string_view column, std::string_view oid) {
  if (!column.empty() && column.front() == '.') column.remove_prefix(1);
  if (!oid.empty() && oid.front() == '.') oid.remove_prefix(1);
  if (oid.size() <= column.size() + 1 || oid.substr(0, column.size()) != column ||
      oid[column.size()] != '.')
    return std::string();
  return std::string(oid.substr(column.size() + 1));
}

const char* SnmpVerdict(const SnmpSetResult& result, SnmpSuccessWord successWord) {
  if (!result.responded) return "fail";
  if (result.errorStatus != 0) return "Fail";
  return successWord == SnmpSuccessWord::kSuccess ? "Success" : "Succeed";
}
