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

size_t SnmpWalk(const std::string& agent, const std::string& readCommunity,
                const std::vector<std::string>& columnOids, const SnmpRowConsumer& consumer,
                unsigned long timeoutMs, const std::atomic<bool>* stop) {
  auto stopped = [stop] { return stop != nullptr && stop->load(); };
  size_t rows = 0;
  CSnmpV1 request(0);
  request.setType(kSnmpGetNextRequest);
  {
    CSnmpTable walker(&request);
    request.clearVarBindList();
    request.setCommunity(readCommunity.c_str());
    for (const std::string& column : columnOids) request.addValue(column.c_str(), kSnmpNull, nullptr);
    if (columnOids.empty()) return 0;

    CSnmp* answer = nullptr;
    SnmpRow row;
    while (!stopped() && walker.getNext(agent.c_str(), answer, timeoutMs) == 0) {
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
      ++rows;
      if (consumer) consumer(row);
    }
    delete answer;  // an answer handed out with the final step, if any
  }  // the walker before the request object
  return rows;
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
