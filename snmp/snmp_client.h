// The SNMP client library (`snmp.dll` on the classic host), with the classes and the
// call contract of its interface table: `CSnmp` (a variable-binding list, also the type of an
// answer), `CSnmpV1` (a request object) and `CSnmpTable` (a walker). Our own implementation:
// SNMPv1 only, one request and one answer per exchange, no retries.
//
// Texts that an answer hands out (`getOid`, `getValue`) are new heap allocations; release them
// with CSnmp::freeText. Answers are released through their virtual destructor (`delete`).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "snmp/ber.h"
#include "snmp/udp_transport.h"

// Value type codes of addValue.
enum SnmpTypeCode : int {
  kSnmpInteger = 1,
  kSnmpOctetString = 2,
  kSnmpNull = 4,
  kSnmpIpAddress = 8,
};

// PDU kinds for CSnmpV1::setType (the plug-in uses 1 and 3; 0 is a GetRequest, for tools).
enum SnmpRequestType : int {
  kSnmpGetRequest = 0,
  kSnmpGetNextRequest = 1,
  kSnmpSetRequest = 3,
};

constexpr unsigned long kSnmpTimeoutMs = 3000;  // every request waits at most 3 s

// Non-zero returns of CSnmpV1::send and CSnmpTable::getNext. The plug-in's callers only
// compare with 0; the distinct values help tests and tools.
enum SnmpSendStatus : int {
  kSnmpOk = 0,
  kSnmpTimeout = 1,        // no acceptable answer within the time-out
  kSnmpBadRequest = 2,     // the request could not be built (bad OID or value text, no type)
  kSnmpBadAddress = 3,     // the agent text is not a dotted IPv4 address
  kSnmpSocketError = 4,    // the socket could not be opened or written
  kSnmpEndOfTable = 5,     // getNext: the walk left its columns
  kSnmpAgentError = 6,     // getNext: the agent answered with a non-zero error status
  kSnmpNotIncreasing = 7,  // getNext: an OID did not follow the one asked for (the agent loops)
  kSnmpUnmatched = 8,      // getNext: an answer without bindings, or with more than the columns
};

class CSnmpTable;

// While one lives, every request that its thread sends (sets and walks alike) goes through one
// UDP socket, opened at the first request and closed with the scope, instead of a socket per
// request object: a switch's whole apply, tens of requests, costs one socket. The socket is
// connected to the switch last asked, so the kernel routes once per switch and hands on only
// that switch's datagrams. A scope opened while another lives on the thread uses the outer one.
// Answers are still matched by address and request-id, so a late answer to an earlier request
// is dropped as before.
class SnmpSocketScope {
 public:
  SnmpSocketScope();
  ~SnmpSocketScope();
  SnmpSocketScope(const SnmpSocketScope&) = delete;
  SnmpSocketScope& operator=(const SnmpSocketScope&) = delete;

 private:
  friend class CSnmpV1;
  snmp::UdpSocket m_socket;
  std::unique_ptr<uint8_t[]> m_buffer;  // room for the largest answer, from the first request
  bool m_outermost;
};

class CSnmp {
 public:
  CSnmp();
  virtual ~CSnmp();
  CSnmp(const CSnmp&) = delete;
  CSnmp& operator=(const CSnmp&) = delete;

  // Empties the binding list.
  void clearVarBindList();
  // Appends one binding: OID text, type code (1, 2, 4 or 8) and value text (null for code 4;
  // for code 2 a zero-terminated text). Returns 0, or -1 when the OID or the value cannot be
  // encoded; such a binding makes the next send fail with kSnmpBadRequest.
  int addValue(const char* oid, int type, const char* value);
  // Appends an OCTET STRING binding of exactly `length` bytes (zero bytes included).
  int addValue(const char* oid, int type, const char* value, unsigned long length);

  // Answer accessors. Each returns 0 on success, -1 for a bad position.
  virtual int getError(int& errorStatus, int& errorIndex);
  virtual int getVarBindCount();
  virtual int getOid(int index, char*& oid);
  // The value rendered: INTEGER and unsigned types as decimal text, IpAddress
  // as dotted text, OCTET STRING as its raw octets followed by a zero byte.
  virtual int getValue(int index, char*& value);
  // The same, and beside it the type's name ("INTEGER", "OCTET STRING", ...): the "second
  // text" beside the value, which the system ignores.
  virtual int getValue(int index, char*& value, char*& typeName);
  // Extensions: the rendered value's length in bytes (octet strings may hold zero bytes) and
  // the BER tag of the value; -1 for a bad position.
  virtual long getValueLength(int index);
  virtual int getValueType(int index);

  static void freeText(char* text);

  // The bindings as decoded (for SnmpWalk and tests).
  const std::vector<snmp::VarBind>& varBinds() const { return m_varBinds; }

 protected:
  friend class CSnmpV1;
  friend class CSnmpTable;
  std::vector<snmp::VarBind> m_varBinds;
  bool m_bad = false;  // an addValue failed since the last clear
  int m_errorStatus = 0;
  int m_errorIndex = 0;
};

class CSnmpV1 : public CSnmp {
 public:
  // Always constructed with 0. The integer is reserved and has no effect.
  explicit CSnmpV1(int reserved = 0);
  ~CSnmpV1() override;

  // 1 = GetNextRequest, 3 = SetRequest (0 = GetRequest). Returns 0, or -1 for other values.
  int setType(int type);
  int setCommunity(const char* community);

  // Sends the request once to UDP 161 of `agent` (dotted text; "a.b.c.d:port" also accepted)
  // and waits up to timeoutMs for the answer: one from the agent's address and port, of type
  // GetResponse, SNMPv1, carrying this request's request-id. Anything else is dropped and the
  // wait goes on. Returns 0 and hands out the answer, or non-zero (SnmpSendStatus) and leaves
  // `answer` untouched.
  int send(const char* agent, CSnmp*& answer, unsigned long timeoutMs);

 private:
  friend class CSnmpTable;
  // One exchange with explicit bindings; on 0 `reply` holds the accepted answer. `binds` is
  // lent to the request while it is encoded and handed back unchanged.
  int exchange(const char* agent, uint8_t pduType, std::vector<snmp::VarBind>& binds,
               unsigned long timeoutMs, snmp::Message& reply);

  int m_type = -1;
  std::string m_community;
  // Without a SnmpSocketScope: opened on first use, released with the request object.
  snmp::UdpSocket m_socket;
  std::unique_ptr<uint8_t[]> m_recvBuffer;
  std::string m_sendBuffer;
};

class CSnmpTable {
 public:
  // Binds a walker to a request object that is (or will be, before the first getNext) set to
  // GetNextRequest. The column OIDs are read from its binding list at the first getNext.
  explicit CSnmpTable(CSnmp* request);
  ~CSnmpTable();
  CSnmpTable(const CSnmpTable&) = delete;
  CSnmpTable& operator=(const CSnmpTable&) = delete;

  // One GetNext step: the first asks for the successors of the column OIDs, each
  // later one for the successors of the OIDs that the previous step returned. Returns 0 and
  // hands out the answer while every returned OID lies under its column and is greater than
  // the OID asked for (an answer with fewer bindings than columns is a row whose last cells
  // are missing); non-zero at the end of the table, on an error status, on a time-out,
  // and for ever after (the same value each time). `answer` is only set on 0.
  int getNext(const char* agent, CSnmp*& answer, unsigned long timeoutMs);
  // The error status of the answer that ended the walk with kSnmpAgentError; 0 otherwise.
  int endErrorStatus() const { return m_endErrorStatus; }

 private:
  CSnmpV1* m_request;
  std::vector<snmp::Oid> m_columns;
  std::vector<snmp::VarBind> m_cursor;
  bool m_started = false;
  int m_end = kSnmpOk;  // why the walk ended; kSnmpOk while it goes on
  int m_endErrorStatus = 0;
};
