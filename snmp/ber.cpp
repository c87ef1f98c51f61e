#include "snmp/ber.h"

#include <algorithm>
#include <cstdio>

namespace snmp {

// ---------------------------------------------------------------------------------------------
// OIDs

bool ParseOid(std::string_view text, Oid& out) {
  out.clear();
  if (!text.empty() && text.front() == '.') text.remove_prefix(1);
  if (text.empty()) return false;
  // One allocation per OID rather than one per doubling: every binding of every request has one.
  out.reserve(std::min<size_t>(static_cast<size_t>(std::count(text.begin(), text.end(), '.')) + 1, kMaxOidArcs));
  uint64_t arc = 0;
  bool inArc = false;
  for (size_t i = 0; i <= text.size(); ++i) {
    if (i == text.size() || text[i] == '.') {
      if (!inArc || out.size() >= kMaxOidArcs) return false;
      out.push_back(static_cast<uint32_t>(arc));
      arc = 0;
      inArc = false;
      continue;
    }
    char c = text[i];
    if (c < '0' || c > '9') return false;
    arc = arc * 10 + static_cast<uint64_t>(c - '0');
    if (arc > 0xFFFFFFFFull) return false;
    inArc = true;
  }
  // BER packs the first two arcs into one sub-identifier: X.690 8.19.4.
  if (out.size() < 2 || out[0] > 2 || (out[0] < 2 && out[1] >= 40)) return false;
  return true;
}

std::string FormatOid(const Oid& oid) {
  std::string s;
  s.reserve(oid.size() * 4);
  // By hand rather than snprintf: a walk formats every OID of every answer.
  char buf[10];
  for (size_t i = 0; i < oid.size(); ++i) {
    if (i) s.push_back('.');
    char* end = buf + sizeof buf;
    char* p = end;
    uint32_t v = oid[i];
    do {
      *--p = static_cast<char>('0' + v % 10);
      v /= 10;
    } while (v != 0);
    s.append(p, static_cast<size_t>(end - p));
  }
  return s;
}

bool OidIsUnder(const Oid& oid, const Oid& prefix) {
  if (oid.size() <= prefix.size()) return false;
  for (size_t i = 0; i < prefix.size(); ++i)
    if (oid[i] != prefix[i]) return false;
  return true;
}

int CompareOids(const Oid& a, const Oid& b) {
  size_t n = a.size() < b.size() ? a.size() : b.size();
  for (size_t i = 0; i < n; ++i) {
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  }
  if (a.size() == b.size()) return 0;
  return a.size() < b.size() ? -1 : 1;
}

Value Value::IpAddress(uint32_t hostOrder) {
  Value x;
  x.tag = kTagIpAddress;
  x.bytes.push_back(static_cast<char>(hostOrder >> 24));
  x.bytes.push_back(static_cast<char>(hostOrder >> 16));
  x.bytes.push_back(static_cast<char>(hostOrder >> 8));
  x.bytes.push_back(static_cast<char>(hostOrder));
  return x;
}

// ---------------------------------------------------------------------------------------------
// Encoder: each element is built as content first, then wrapped with tag and length.

namespace {

void PutLength(std::string& out, size_t len) {
  if (len < 0x80) {
    out.push_back(static_cast<char>(len));
    return;
  }
  uint8_t tmp[4];
  int n = 0;
  while (len) {
    tmp[n++] = static_cast<uint8_t>(len & 0xFF);
    len >>= 8;
  }
  out.push_back(static_cast<char>(0x80 | n));
  while (n) out.push_back(static_cast<char>(tmp[--n]));
}

void PutTlv(std::string& out, uint8_t tag, std::string_view content) {
  out.push_back(static_cast<char>(tag));
  PutLength(out, content.size());
  out.append(content);
}

// Minimal two's-complement content octets (X.690 8.3).
void PutSignedContent(std::string& out, int64_t v) {
  uint8_t tmp[8];
  int n = 0;
  for (;;) {
    tmp[n++] = static_cast<uint8_t>(v & 0xFF);
    int64_t rest = v >> 8;  // arithmetic shift
    bool signBit = (tmp[n - 1] & 0x80) != 0;
    if ((rest == 0 && !signBit) || (rest == -1 && signBit) || n == 8) break;
    v = rest;
  }
  while (n) out.push_back(static_cast<char>(tmp[--n]));
}

// Unsigned values: a leading 0x00 when the high bit is set (0xFFFFFFFF takes 5 octets).
void PutUnsignedContent(std::string& out, uint64_t v) {
  uint8_t tmp[9];
  int n = 0;
  do {
    tmp[n++] = static_cast<uint8_t>(v & 0xFF);
    v >>= 8;
  } while (v);
  if (tmp[n - 1] & 0x80) tmp[n++] = 0;
  while (n) out.push_back(static_cast<char>(tmp[--n]));
}

void PutBase128(std::string& out, uint64_t v) {
  uint8_t tmp[10];
  int n = 0;
  do {
    tmp[n++] = static_cast<uint8_t>(v & 0x7F);
    v >>= 7;
  } while (v);
  while (n > 1) out.push_back(static_cast<char>(tmp[--n] | 0x80));
  out.push_back(static_cast<char>(tmp[0]));
}

bool PutOidContent(std::string& out, const Oid& oid) {
  if (oid.size() < 2 || oid.size() > kMaxOidArcs || oid[0] > 2 || (oid[0] < 2 && oid[1] >= 40))
    return false;
  PutBase128(out, static_cast<uint64_t>(oid[0]) * 40 + oid[1]);
  for (size_t i = 2; i < oid.size(); ++i) PutBase128(out, oid[i]);
  return true;
}

bool PutValue(std::string& out, const Value& v) {
  if (v.undecoded) {  // handed back exactly as it came
    PutTlv(out, v.tag, v.bytes);
    return true;
  }
  std::string c;
  switch (v.tag) {
    case kTagInteger: PutSignedContent(c, v.integer); break;
    case kTagCounter:
    case kTagGauge:
    case kTagTimeTicks:
      if (v.integer < 0 || v.integer > 0xFFFFFFFFll) return false;
      PutUnsignedContent(c, static_cast<uint64_t>(v.integer));
      break;
    case kTagCounter64: PutUnsignedContent(c, v.counter64); break;
    case kTagOctetString:
    case kTagOpaque: c = v.bytes; break;
    case kTagIpAddress:
      if (v.bytes.size() != 4) return false;
      c = v.bytes;
      break;
    case kTagNull: break;
    case kTagOid:
      if (!PutOidContent(c, v.oid)) return false;
      break;
    default: return false;
  }
  PutTlv(out, v.tag, c);
  return true;
}

}  // namespace

bool EncodeMessage(const Message& msg, std::string& out) {
  std::string list;
  for (const VarBind& vb : msg.pdu.varbinds) {
    std::string one;
    std::string name;
    if (!PutOidContent(name, vb.name)) return false;
    PutTlv(one, kTagOid, name);
    if (!PutValue(one, vb.value)) return false;
    PutTlv(list, kTagSequence, one);
  }
  std::string pdu;
  std::string tmp;
  PutSignedContent(tmp, msg.pdu.requestId);
  PutTlv(pdu, kTagInteger, tmp);
  tmp.clear();
  PutSignedContent(tmp, msg.pdu.errorStatus);
  PutTlv(pdu, kTagInteger, tmp);
  tmp.clear();
  PutSignedContent(tmp, msg.pdu.errorIndex);
  PutTlv(pdu, kTagInteger, tmp);
  PutTlv(pdu, kTagSequence, list);

  std::string body;
  tmp.clear();
  PutSignedContent(tmp, msg.version);
  PutTlv(body, kTagInteger, tmp);
  PutTlv(body, kTagOctetString, msg.community);
  PutTlv(body, msg.pdu.type, pdu);

  std::string whole;
  PutTlv(whole, kTagSequence, body);
  if (whole.size() > kMaxMessageSize) return false;
  out.append(whole);
  return true;
}

// ---------------------------------------------------------------------------------------------
// Decoder: a cursor over [p, end); every read checks the bounds first.

namespace {

struct Reader {
  const uint8_t* p;
  const uint8_t* end;
  size_t left() const { return static_cast<size_t>(end - p); }
};

// Reads tag and length; `content` becomes the element's content range.
DecodeError ReadHeader(Reader& r, uint8_t& tag, Reader& content) {
  if (r.left() < 2) return DecodeError::kTruncated;
  tag = *r.p++;
  if ((tag & 0x1F) == 0x1F) return DecodeError::kBadTag;  // multi-byte tag form
  uint8_t first = *r.p++;
  size_t len = 0;
  if (first < 0x80) {
    len = first;
  } else {
    size_t n = first & 0x7F;
    if (n == 0 || n > 4) return DecodeError::kBadLength;  // indefinite, or 5+ length octets
    if (r.left() < n) return DecodeError::kTruncated;
    for (size_t i = 0; i < n; ++i) len = (len << 8) | *r.p++;
  }
  if (len > r.left()) return DecodeError::kTruncated;
  content.p = r.p;
  content.end = r.p + len;
  r.p += len;
  return DecodeError::kOk;
}

DecodeError Expect(Reader& r, uint8_t want, Reader& content) {
  uint8_t tag = 0;
  DecodeError e = ReadHeader(r, tag, content);
  if (e != DecodeError::kOk) return e;
  return tag == want ? DecodeError::kOk : DecodeError::kBadTag;
}

DecodeError SignedContent(const Reader& c, int64_t& v) {
  size_t n = c.left();
  if (n == 0 || n > 8) return DecodeError::kBadInteger;
  uint64_t u = (c.p[0] & 0x80) ? ~0ull : 0;
  for (size_t i = 0; i < n; ++i) u = (u << 8) | c.p[i];
  v = static_cast<int64_t>(u);
  return DecodeError::kOk;
}

DecodeError Int32(Reader& r, int32_t& v) {
  Reader c{};
  DecodeError e = Expect(r, kTagInteger, c);
  if (e != DecodeError::kOk) return e;
  int64_t x = 0;
  e = SignedContent(c, x);
  if (e != DecodeError::kOk) return e;
  if (x < INT32_MIN || x > INT32_MAX) return DecodeError::kBadInteger;
  v = static_cast<int32_t>(x);
  return DecodeError::kOk;
}

// Unsigned content: up to `maxBytes` value octets, plus one leading 0x00 allowed.
DecodeError UnsignedContent(const Reader& c, size_t maxBytes, uint64_t& v) {
  size_t n = c.left();
  if (n == 0) return DecodeError::kBadInteger;
  const uint8_t* q = c.p;
  if (n == maxBytes + 1) {
    if (q[0] != 0) return DecodeError::kBadValue;
    ++q;
    --n;
  } else if (n > maxBytes) {
    return DecodeError::kBadInteger;
  }
  uint64_t u = 0;
  for (size_t i = 0; i < n; ++i) u = (u << 8) | q[i];
  v = u;
  return DecodeError::kOk;
}

DecodeError OidContent(const Reader& c, Oid& oid) {
  oid.clear();
  if (c.left() == 0) return DecodeError::kBadOid;
  // At most one arc per byte, and one more for the first: one allocation per OID.
  oid.reserve(std::min<size_t>(c.left() + 1, kMaxOidArcs + 1));
  const uint8_t* q = c.p;
  bool first = true;
  while (q < c.end) {
    if (*q == 0x80) return DecodeError::kBadOid;  // non-minimal sub-identifier (X.690 8.19.2)
    uint64_t v = 0;
    for (;;) {
      if (q >= c.end) return DecodeError::kBadOid;  // ends with the continuation bit
      uint8_t b = *q++;
      v = (v << 7) | (b & 0x7F);
      if (v > (first ? 0xFFFFFFFFull + 80 : 0xFFFFFFFFull)) return DecodeError::kBadOid;
      if (!(b & 0x80)) break;
    }
    if (first) {
      uint32_t a0 = v < 40 ? 0 : v < 80 ? 1 : 2;
      oid.push_back(a0);
      oid.push_back(static_cast<uint32_t>(v - 40ull * a0));
      first = false;
    } else {
      if (oid.size() >= kMaxOidArcs) return DecodeError::kBadOid;
      oid.push_back(static_cast<uint32_t>(v));
    }
  }
  return DecodeError::kOk;
}

DecodeError ReadValue(Reader& r, Value& v) {
  uint8_t tag = 0;
  Reader c{};
  DecodeError e = ReadHeader(r, tag, c);
  if (e != DecodeError::kOk) return e;
  v = Value{};
  v.tag = tag;
  // A value this side cannot hold (a number too long, a type it does not know) is kept as its
  // bytes: one odd value must not discard an answer whose error status says what happened.
  auto keep = [&] {
    v = Value{};
    v.tag = tag;
    v.undecoded = true;
    v.bytes.assign(reinterpret_cast<const char*>(c.p), c.left());
    return DecodeError::kOk;
  };
  switch (tag) {
    case kTagInteger: return SignedContent(c, v.integer) == DecodeError::kOk ? DecodeError::kOk : keep();
    case kTagCounter:
    case kTagGauge:
    case kTagTimeTicks: {
      uint64_t u = 0;
      if (UnsignedContent(c, 4, u) != DecodeError::kOk) return keep();
      v.integer = static_cast<int64_t>(u);
      return DecodeError::kOk;
    }
    case kTagCounter64:
      return UnsignedContent(c, 8, v.counter64) == DecodeError::kOk ? DecodeError::kOk : keep();
    case kTagOctetString:
    case kTagOpaque:
      v.bytes.assign(reinterpret_cast<const char*>(c.p), c.left());
      return DecodeError::kOk;
    case kTagIpAddress:
      if (c.left() != 4) return DecodeError::kBadValue;
      v.bytes.assign(reinterpret_cast<const char*>(c.p), 4);
      return DecodeError::kOk;
    case kTagNull:
    case 0x80:  // noSuchObject, noSuchInstance, endOfMibView (SNMPv2 exceptions): no content
    case 0x81:
    case 0x82:
      return c.left() == 0 ? DecodeError::kOk : DecodeError::kBadValue;
    case kTagOid: return OidContent(c, v.oid);
    default: return keep();  // a type SNMPv1 does not define
  }
}

}  // namespace

DecodeError DecodeMessage(const uint8_t* data, size_t size, Message& out) {
  if (data == nullptr || size == 0) return DecodeError::kTruncated;
  Reader all{data, data + size};
  Reader msg{};
  DecodeError e = Expect(all, kTagSequence, msg);
  if (e != DecodeError::kOk) return e;
  if (all.left()) return DecodeError::kTrailingBytes;

  if ((e = Int32(msg, out.version)) != DecodeError::kOk) return e;
  Reader comm{};
  if ((e = Expect(msg, kTagOctetString, comm)) != DecodeError::kOk) return e;
  out.community.assign(reinterpret_cast<const char*>(comm.p), comm.left());

  uint8_t pduTag = 0;
  Reader pdu{};
  if ((e = ReadHeader(msg, pduTag, pdu)) != DecodeError::kOk) return e;
  if (pduTag != kTagGetRequest && pduTag != kTagGetNextRequest && pduTag != kTagGetResponse &&
      pduTag != kTagSetRequest)
    return DecodeError::kBadTag;
  if (msg.left()) return DecodeError::kTrailingBytes;
  out.pdu.type = pduTag;

  if ((e = Int32(pdu, out.pdu.requestId)) != DecodeError::kOk) return e;
  if ((e = Int32(pdu, out.pdu.errorStatus)) != DecodeError::kOk) return e;
  if ((e = Int32(pdu, out.pdu.errorIndex)) != DecodeError::kOk) return e;
  Reader list{};
  if ((e = Expect(pdu, kTagSequence, list)) != DecodeError::kOk) return e;
  if (pdu.left()) return DecodeError::kTrailingBytes;

  out.pdu.varbinds.clear();
  while (list.left()) {
    Reader vb{};
    if ((e = Expect(list, kTagSequence, vb)) != DecodeError::kOk) return e;
    VarBind bind;
    Reader name{};
    if ((e = Expect(vb, kTagOid, name)) != DecodeError::kOk) return e;
    if ((e = OidContent(name, bind.name)) != DecodeError::kOk) return e;
    if ((e = ReadValue(vb, bind.value)) != DecodeError::kOk) return e;
    if (vb.left()) return DecodeError::kTrailingBytes;
    out.pdu.varbinds.push_back(std::move(bind));
  }
  return DecodeError::kOk;
}

const char* DecodeErrorText(DecodeError e) {
  switch (e) {
    case DecodeError::kOk: return "ok";
    case DecodeError::kTruncated: return "truncated";
    case DecodeError::kBadLength: return "bad length";
    case DecodeError::kBadTag: return "bad tag";
    case DecodeError::kBadInteger: return "bad integer";
    case DecodeError::kBadOid: return "bad OID";
    case DecodeError::kBadValue: return "bad value";
    case DecodeError::kTrailingBytes: return "trailing bytes";
  }
  return "?";
}

std::string RenderValue(const Value& v) {
  char buf[32];
  if (v.undecoded) {
    Value opaque = v;
    opaque.undecoded = false;
    opaque.tag = kTagOpaque;
    return RenderValue(opaque);
  }
  switch (v.tag) {
    // to_string rather than snprintf: every INTEGER of every walked row passes here.
    case kTagInteger: return std::to_string(static_cast<long long>(v.integer));
    case kTagCounter:
    case kTagGauge:
    case kTagTimeTicks: return std::to_string(static_cast<unsigned long long>(v.integer));
    case kTagCounter64: return std::to_string(static_cast<unsigned long long>(v.counter64));
    case kTagIpAddress: {
      if (v.bytes.size() != 4) return std::string();
      const auto* b = reinterpret_cast<const unsigned char*>(v.bytes.data());
      std::snprintf(buf, sizeof buf, "%u.%u.%u.%u", b[0], b[1], b[2], b[3]);
      return buf;
    }
    case kTagOctetString: return v.bytes;
    case kTagOpaque: {
      std::string s;
      for (size_t i = 0; i < v.bytes.size(); ++i) {
        std::snprintf(buf, sizeof buf, i ? " %02X" : "%02X",
                      static_cast<unsigned char>(v.bytes[i]));
        s += buf;
      }
      return s;
    }
    case kTagOid: return FormatOid(v.oid);
    default: return std::string();
  }
}

const char* TypeName(uint8_t tag) {
  switch (tag) {
    case kTagInteger: return "INTEGER";
    case kTagOctetString: return "OCTET STRING";
    case kTagNull: return "NULL";
    case kTagOid: return "OBJECT IDENTIFIER";
    case kTagIpAddress: return "IpAddress";
    case kTagCounter: return "Counter";
    case kTagGauge: return "Gauge";
    case kTagTimeTicks: return "TimeTicks";
    case kTagOpaque: return "Opaque";
    case kTagCounter64: return "Counter64";
    case 0x80: return "noSuchObject";
    case 0x81: return "noSuchInstance";
    case 0x82: return "endOfMibView";
  }
  return "unknown";
}

}  // namespace snmp
