#include "snmp/snmp_client.h"

#include <chrono>
#include <cstring>

namespace {

char* DupBytes(const std::string& s) {
  char* p = new char[s.size() + 1];
  if (!s.empty()) std::memcpy(p, s.data(), s.size());
  p[s.size()] = '\0';
  return p;
}

// Decimal text of an INTEGER binding: an optional '-' and 1..10 digits within 32 bits.
bool ParseInteger(const char* text, int64_t& v) {
  if (text == nullptr) return false;
  const char* p = text;
  bool neg = false;
  if (*p == '-') {
    neg = true;
    ++p;
  }
  if (*p == '\0') return false;
  int64_t x = 0;
  for (; *p; ++p) {
    if (*p < '0' || *p > '9') return false;
    x = x * 10 + (*p - '0');
    if (x > 4294967295ll) return false;
  }
  x = neg ? -x : x;
  if (x < INT32_MIN || x > INT32_MAX) return false;
  v = x;
  return true;
}

// The thread's outermost SnmpSocketScope, if one lives. A plain pointer: a thread_local with a
// destructor would run at thread exit, after the plug-in DLL may have been unloaded.
thread_local SnmpSocketScope* t_scope = nullptr;

}  // namespace

SnmpSocketScope::SnmpSocketScope() : m_outermost(t_scope == nullptr) {
  if (m_outermost) t_scope = this;
}

SnmpSocketScope::~SnmpSocketScope() {
  if (m_outermost) t_scope = nullptr;
}

// ---------------------------------------------------------------------------------------------
// CSnmp

CSnmp::CSnmp() = default;
CSnmp::~CSnmp() = default;

void CSnmp::clearVarBindList() {
  m_varBinds.clear();
  m_bad = false;
}

int CSnmp::addValue(const char* oid, int type, const char* value) {
  snmp::VarBind vb;
  bool ok = oid != nullptr && snmp::ParseOid(oid, vb.name);
  switch (type) {
    case kSnmpInteger: {
      int64_t v = 0;
      ok = ok && ParseInteger(value, v);
      vb.value = snmp::Value::Integer(v);
      break;
    }
    case kSnmpOctetString:
      vb.value = snmp::Value::OctetString(value ? std::string(value) : std::string());
      break;
    case kSnmpNull: vb.value = snmp::Value::Null(); break;
    case kSnmpIpAddress: {
      snmp::Endpoint e;
      ok = ok && value != nullptr && std::strchr(value, ':') == nullptr &&
           snmp::ParseEndpoint(value, 0, e);
      vb.value = snmp::Value::IpAddress(e.addr);
      break;
    }
    default: ok = false; break;
  }
  m_varBinds.push_back(std::move(vb));
  if (!ok) {
    m_bad = true;
    return -1;
  }
  return 0;
}

int CSnmp::addValue(const char* oid, int type, const char* value, unsigned long length) {
  snmp::VarBind vb;
  bool ok = oid != nullptr && snmp::ParseOid(oid, vb.name) && type == kSnmpOctetString &&
            (value != nullptr || length == 0);
  vb.value = snmp::Value::OctetString(ok && length ? std::string(value, length) : std::string());
  m_varBinds.push_back(std::move(vb));
  if (!ok) {
    m_bad = true;
    return -1;
  }
  return 0;
}

int CSnmp::getError(int& errorStatus, int& errorIndex) {
  errorStatus = m_errorStatus;
  errorIndex = m_errorIndex;
  return 0;
}

int CSnmp::getVarBindCount() { return static_cast<int>(m_varBinds.size()); }

int CSnmp::getOid(int index, char*& oid) {
  if (index < 0 || static_cast<size_t>(index) >= m_varBinds.size()) return -1;
  oid = DupBytes(snmp::FormatOid(m_varBinds[static_cast<size_t>(index)].name));
  return 0;
}

int CSnmp::getValue(int index, char*& value) {
  if (index < 0 || static_cast<size_t>(index) >= m_varBinds.size()) return -1;
  value = DupBytes(snmp::RenderValue(m_varBinds[static_cast<size_t>(index)].value));
  return 0;
}

int CSnmp::getValue(int index, char*& value, char*& typeName) {
  if (getValue(index, value) != 0) return -1;
  typeName = DupBytes(snmp::TypeName(m_varBinds[static_cast<size_t>(index)].value.tag));
  return 0;
}

long CSnmp::getValueLength(int index) {
  if (index < 0 || static_cast<size_t>(index) >= m_varBinds.size()) return -1;
  return static_cast<long>(snmp::RenderValue(m_varBinds[static_cast<size_t>(index)].value).size());
}

int CSnmp::getValueType(int index) {
  if (index < 0 || static_cast<size_t>(index) >= m_varBinds.size()) return -1;
  return m_varBinds[static_cast<size_t>(index)].value.tag;
}

void CSnmp::freeText(char* text) { delete[] text; }

// ---------------------------------------------------------------------------------------------
// CSnmpV1

CSnmpV1::CSnmpV1(int /*reserved*/) {}
CSnmpV1::~CSnmpV1() = default;

int CSnmpV1::setType(int type) {
  if (type != kSnmpGetRequest && type != kSnmpGetNextRequest && type != kSnmpSetRequest) {
    m_type = -1;
    return -1;
  }
  m_type = type;
  return 0;
}

int CSnmpV1::setCommunity(const char* community) {
  m_community = community ? community : "";
  return 0;
}

int CSnmpV1::exchange(const char* agent, uint8_t pduType, std::vector<snmp::VarBind>& binds,
                      unsigned long timeoutMs, snmp::Message& reply) {
  snmp::Endpoint to;
  if (agent == nullptr || !snmp::ParseEndpoint(agent, snmp::kSnmpPort, to)) return kSnmpBadAddress;

  snmp::Message req;
  req.version = 0;
  req.community = m_community;
  req.pdu.type = pduType;
  // Unpredictable, positive request-ids: an off-path sender cannot forge an answer.
  req.pdu.requestId = static_cast<int32_t>(snmp::RandomU32() & 0x7FFFFFFF);
  if (req.pdu.requestId == 0) req.pdu.requestId = 1;
  req.pdu.varbinds.swap(binds);
  m_sendBuffer.clear();
  const bool encoded = snmp::EncodeMessage(req, m_sendBuffer);
  req.pdu.varbinds.swap(binds);
  if (!encoded) return kSnmpBadRequest;

  SnmpSocketScope* const scope = t_scope;
  snmp::UdpSocket& socket = scope != nullptr ? scope->m_socket : m_socket;
  std::unique_ptr<uint8_t[]>& buffer = scope != nullptr ? scope->m_buffer : m_recvBuffer;
  // Left uncleared (only received bytes are read): clearing 64 KB for every set cost more than
  // the set's own work.
  if (!buffer) buffer.reset(new uint8_t[snmp::kMaxMessageSize + 1]);
  if (!socket.IsOpen() && !socket.Open()) return kSnmpSocketError;
  if (!socket.ConnectedTo(to) && !socket.Connect(to)) return kSnmpSocketError;
  if (!socket.Send(m_sendBuffer.data(), m_sendBuffer.size())) return kSnmpSocketError;

  using Clock = std::chrono::steady_clock;
  const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  for (;;) {
    auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    if (left.count() < 0) return kSnmpTimeout;
    size_t size = 0;
    snmp::Endpoint from;
    auto r = socket.RecvFrom(buffer.get(), snmp::kMaxMessageSize + 1, size, from,
                             static_cast<int>(left.count()));
    if (r == snmp::UdpSocket::Recv::kTimeout) return kSnmpTimeout;
    if (r == snmp::UdpSocket::Recv::kError) return kSnmpSocketError;
    // Only the agent's own answer to this request counts; the rest (stale or duplicate
    // answers, garbage) is dropped and the wait goes on.
    if (!(from == to)) continue;
    if (snmp::DecodeMessage(buffer.get(), size, reply) != snmp::DecodeError::kOk) continue;
    if (reply.version != 0 || reply.pdu.type != snmp::kTagGetResponse ||
        reply.pdu.requestId != req.pdu.requestId)
      continue;
    return kSnmpOk;
  }
}

int CSnmpV1::send(const char* agent, CSnmp*& answer, unsigned long timeoutMs) {
  if (m_bad || m_type < 0) return kSnmpBadRequest;
  uint8_t pduType = m_type == kSnmpSetRequest       ? snmp::kTagSetRequest
                    : m_type == kSnmpGetNextRequest ? snmp::kTagGetNextRequest
                                                    : snmp::kTagGetRequest;
  snmp::Message reply;
  int rc = exchange(agent, pduType, m_varBinds, timeoutMs, reply);
  if (rc != kSnmpOk) return rc;
  auto* a = new CSnmp;
  a->m_varBinds = std::move(reply.pdu.varbinds);
  a->m_errorStatus = reply.pdu.errorStatus;
  a->m_errorIndex = reply.pdu.errorIndex;
  answer = a;
  return kSnmpOk;
}

// ---------------------------------------------------------------------------------------------
// CSnmpTable

CSnmpTable::CSnmpTable(CSnmp* request) : m_request(dynamic_cast<CSnmpV1*>(request)) {}
CSnmpTable::~CSnmpTable() = default;

int CSnmpTable::getNext(const char* agent, CSnmp*& answer, unsigned long timeoutMs) {
  if (m_end != kSnmpOk) return m_end;
  auto end = [this](int why) { return m_end = why; };
  if (m_request == nullptr || m_request->m_type != kSnmpGetNextRequest || m_request->m_bad)
    return end(kSnmpBadRequest);
  if (!m_started) {
    m_started = true;
    m_columns.clear();
    m_cursor.clear();
    for (const snmp::VarBind& vb : m_request->m_varBinds) {
      m_columns.push_back(vb.name);
      m_cursor.push_back(snmp::VarBind{vb.name, snmp::Value::Null()});
    }
    if (m_columns.empty()) return end(kSnmpBadRequest);
  }
  snmp::Message reply;
  int rc = m_request->exchange(agent, snmp::kTagGetNextRequest, m_cursor, timeoutMs, reply);
  if (rc != kSnmpOk) return end(rc);
  if (reply.pdu.errorStatus != 0) {  // in SNMPv1 the end of the agent's MIB is noSuchName
    m_endErrorStatus = reply.pdu.errorStatus;
    return end(kSnmpAgentError);
  }
  auto& got = reply.pdu.varbinds;
  // A short answer is a row with its last cells missing (the reader leaves them empty), not
  // the table's end; an empty or longer one cannot be matched to the columns.
  if (got.empty() || got.size() > m_columns.size()) return end(kSnmpUnmatched);
  // Every instance must lie under its column (else the walk left the table) and follow the
  // OID asked for (else the agent loops).
  for (size_t i = 0; i < got.size(); ++i)
    if (!snmp::OidIsUnder(got[i].name, m_columns[i])) return end(kSnmpEndOfTable);
  for (size_t i = 0; i < got.size(); ++i)
    if (snmp::CompareOids(got[i].name, m_cursor[i].name) <= 0) return end(kSnmpNotIncreasing);
  for (size_t i = 0; i < got.size(); ++i) m_cursor[i].name = got[i].name;
  // A column left out moves on to the row just read (all columns share the row's instance),
  // so the next step asks for the row after it there too.
  const size_t instanceAt = m_columns[0].size();
  for (size_t i = got.size(); i < m_columns.size(); ++i) {
    m_cursor[i].name = m_columns[i];
    m_cursor[i].name.insert(m_cursor[i].name.end(), got[0].name.begin() + static_cast<std::ptrdiff_t>(instanceAt),
                            got[0].name.end());
  }
  auto* a = new CSnmp;
  a->m_varBinds = std::move(got);
  a->m_errorStatus = reply.pdu.errorStatus;
  a->m_errorIndex = reply.pdu.errorIndex;
  answer = a;
  return kSnmpOk;
}
