// BER codec: byte tables of known packets and of malformed ones (X.690 rules).
#include <gtest/gtest.h>

#include <string>

#include "snmp/ber.h"

using namespace snmp;

namespace {

std::string Hex(const std::string& bytes) {
  static const char* d = "0123456789abcdef";
  std::string s;
  for (unsigned char c : bytes) {
    if (!s.empty()) s += ' ';
    s += d[c >> 4];
    s += d[c & 15];
  }
  return s;
}

std::string Bytes(std::initializer_list<int> v) {
  std::string s;
  for (int b : v) s.push_back(static_cast<char>(b));
  return s;
}

Oid MakeOid(const char* t) {
  Oid o;
  EXPECT_TRUE(ParseOid(t, o)) << t;
  return o;
}

Message OneBinding(Value v, uint8_t type = kTagSetRequest) {
  Message m;
  m.community = "public";
  m.pdu.type = type;
  m.pdu.requestId = 0x12345678;
  m.pdu.varbinds.push_back(VarBind{MakeOid("1.3.6.1.2.1.1.1"), std::move(v)});
  return m;
}

// The encoding of the single value inside a one-binding message.
std::string EncodedValue(const Value& v) {
  std::string out;
  EXPECT_TRUE(EncodeMessage(OneBinding(v), out));
  // Value follows the 9-byte name TLV (06 07 2b 06 01 02 01 01 01) at the end.
  size_t pos = out.find(Bytes({0x06, 0x07, 0x2b, 0x06, 0x01, 0x02, 0x01, 0x01, 0x01}));
  EXPECT_NE(pos, std::string::npos);
  return out.substr(pos + 9);
}

DecodeError Decode(const std::string& bytes) {
  Message m;
  return DecodeMessage(bytes, m);
}

// A valid GetResponse with the given varbind list content; lengths filled in.
std::string Wrap(const std::string& varbindListContent, int pduTag = 0xA2) {
  auto tlv = [](int tag, const std::string& c) {
    std::string s;
    s.push_back(static_cast<char>(tag));
    if (c.size() < 128) {
      s.push_back(static_cast<char>(c.size()));
    } else {
      s.push_back(static_cast<char>(0x82));
      s.push_back(static_cast<char>(c.size() >> 8));
      s.push_back(static_cast<char>(c.size() & 0xFF));
    }
    return s + c;
  };
  std::string pdu = Bytes({0x02, 0x01, 0x07, 0x02, 0x01, 0x00, 0x02, 0x01, 0x00}) +
                    tlv(0x30, varbindListContent);
  std::string body = Bytes({0x02, 0x01, 0x00}) + tlv(0x04, "public") + tlv(pduTag, pdu);
  return tlv(0x30, body);
}

// One varbind (name 1.3.6.1 and a raw value TLV).
std::string Vb(const std::string& valueTlv) {
  std::string c = Bytes({0x06, 0x03, 0x2b, 0x06, 0x01}) + valueTlv;
  std::string s;
  s.push_back(0x30);
  if (c.size() >= 128) s.push_back(static_cast<char>(0x81));
  s.push_back(static_cast<char>(c.size()));
  return s + c;
}

}  // namespace

TEST(BerEncode, GetNextRequestMatchesTheKnownPacket) {
  Message m = OneBinding(Value::Null(), kTagGetNextRequest);
  std::string out;
  ASSERT_TRUE(EncodeMessage(m, out));
  EXPECT_EQ(Hex(out),
            "30 28 02 01 00 04 06 70 75 62 6c 69 63 a1 1b 02 04 12 34 56 78 02 01 00 02 01 00 "
            "30 0d 30 0b 06 07 2b 06 01 02 01 01 01 05 00");
}

// X.690 rules on known values: minimal two's complement, a leading zero for unsigned values
// with the top bit set, zero bytes kept, long-form lengths, base-128 sub-identifiers.
TEST(BerEncode, ValuesMatchTheirKnownBytes) {
  Value opaque;
  opaque.tag = kTagOpaque;
  opaque.bytes = Bytes({0x9f, 0x01});
  const struct {
    Value value;
    const char* hex;
  } cases[] = {
      {Value::Integer(0), "02 01 00"},         {Value::Integer(127), "02 01 7f"},
      {Value::Integer(128), "02 02 00 80"},    {Value::Integer(-1), "02 01 ff"},
      {Value::Integer(-128), "02 01 80"},      {Value::Integer(-129), "02 02 ff 7f"},
      {Value::Integer(INT32_MIN), "02 04 80 00 00 00"},
      {Value::Unsigned(kTagCounter, 0xFFFFFFFFu), "41 05 00 ff ff ff ff"},
      {Value::Unsigned(kTagGauge, 0x80u), "42 02 00 80"},
      {Value::Unsigned(kTagTimeTicks, 0), "43 01 00"},
      {Value::OctetString(Bytes({0, 0, 0, 0xFF})), "04 04 00 00 00 ff"},
      {Value::OctetString(""), "04 00"},
      {Value::IpAddress(0xC0A80001), "40 04 c0 a8 00 01"},
      {Value::Null(), "05 00"},
      {opaque, "44 02 9f 01"},
      {Value::ObjectId(MakeOid("1.3.6.1.4.1.32473")), "06 08 2b 06 01 04 01 81 fd 59"},
      {Value::ObjectId(MakeOid("1.3.4294967295")), "06 06 2b 8f ff ff ff 7f"},
      {Value::ObjectId(MakeOid("2.999.3")), "06 03 88 37 03"},
  };
  for (const auto& c : cases) EXPECT_EQ(Hex(EncodedValue(c.value)), c.hex);
  EXPECT_EQ(Hex(EncodedValue(Value::OctetString(std::string(200, 'x'))).substr(0, 3)), "04 81 c8");
  EXPECT_EQ(Hex(EncodedValue(Value::OctetString(std::string(300, 'x'))).substr(0, 4)), "04 82 01 2c");
}

TEST(BerEncode, RefusesWhatCannotBeEncoded) {
  std::string out;
  Message m = OneBinding(Value::Null());
  m.pdu.varbinds[0].name = Oid{1};
  EXPECT_FALSE(EncodeMessage(m, out));
  m.pdu.varbinds[0].name = Oid{3, 1};
  EXPECT_FALSE(EncodeMessage(m, out));
  Value bad = Value::IpAddress(1);
  bad.bytes.resize(3);
  EXPECT_FALSE(EncodeMessage(OneBinding(bad), out));
  Message big = OneBinding(Value::OctetString(std::string(70000, 'a')));
  EXPECT_FALSE(EncodeMessage(big, out));
  EXPECT_TRUE(out.empty());
}

// Hand-built answers: what decodes (a non-minimal long-form length is legal BER) and the
// malformed classes that broke other SNMP decoders (issue 3), each with the error it gets.
TEST(BerDecode, HandBuiltMessages) {
  const std::string good = Wrap(Vb(Bytes({0x02, 0x01, 0x05})) + Vb(Bytes({0x04, 0x02, 'h', 'i'})));
  Message m;
  ASSERT_EQ(DecodeMessage(good, m), DecodeError::kOk);
  EXPECT_EQ(m.pdu.requestId, 7);
  ASSERT_EQ(m.pdu.varbinds.size(), 2u);
  EXPECT_EQ(FormatOid(m.pdu.varbinds[0].name), "1.3.6.1");
  EXPECT_EQ(m.pdu.varbinds[0].value.integer, 5);
  EXPECT_EQ(m.pdu.varbinds[1].value.bytes, "hi");
  for (size_t cut = 1; cut < good.size(); ++cut)
    EXPECT_NE(Decode(good.substr(0, cut)), DecodeError::kOk) << "cut at " << cut;
  std::string over = good, multi = good, wrongTop = good;
  over[1] = static_cast<char>(over[1] + 1);
  multi[0] = 0x3F;
  wrongTop[0] = 0x31;
  std::string vb = Vb(Bytes({0x02, 0x01, 0x05}));
  std::string longer = vb;
  longer[1] = static_cast<char>(longer[1] + 2);
  // A request-id of 5 bytes is out of the field's 32-bit range.
  const std::string pdu = Bytes({0x02, 0x05, 0x01, 0, 0, 0, 0, 0x02, 0x01, 0x00, 0x02, 0x01, 0x00, 0x30, 0x00});
  const std::string body = Bytes({0x02, 0x01, 0x00, 0x04, 0x00, 0xA2, static_cast<int>(pdu.size())}) + pdu;
  std::string arcs = Bytes({0x2b});
  arcs.append(126, '\x01');  // 2 + 126 = 128 arcs, the most an OID may have
  const std::string arcs128 = Bytes({0x06, 0x81, static_cast<int>(arcs.size())}) + arcs;
  const std::string arcs129 = Bytes({0x06, 0x81, static_cast<int>(arcs.size() + 1)}) + arcs + '\x01';
  const struct {
    std::string bytes;
    DecodeError error;
    const char* what;
  } cases[] = {
      {Wrap(Bytes({0x30, 0x81, 0x0c, 0x06, 0x03, 0x2b, 0x06, 0x01, 0x04, 0x84, 0, 0, 0, 1, 'z'})), DecodeError::kOk,
       "non-minimal long-form lengths"},
      {Wrap(Vb(arcs128)), DecodeError::kOk, "128 arcs"},
      {"", DecodeError::kTruncated, "empty message"},
      {Bytes({0x30}), DecodeError::kTruncated, "tag only"},
      {Bytes({0x30, 0x00}), DecodeError::kTruncated, "empty sequence"},
      {over, DecodeError::kTruncated, "length beyond the buffer"},
      {Bytes({0x30, 0x85, 0, 0, 0, 0, 3, 2, 1, 0}), DecodeError::kBadLength, "5-byte long-form length"},
      {Bytes({0x30, 0x80, 2, 1, 0, 0, 0}), DecodeError::kBadLength, "indefinite length"},
      {Bytes({0x30, 0xFF, 2, 1, 0}), DecodeError::kBadLength, "reserved length byte"},
      {Bytes({0x30, 0x84, 0xFF, 0xFF, 0xFF, 0xF0, 2, 1, 0}), DecodeError::kTruncated, "negative 4-byte length"},
      {good + Bytes({0}), DecodeError::kTrailingBytes, "trailing byte"},
      {multi, DecodeError::kBadTag, "multi-byte top tag"},
      {Wrap(Vb(Bytes({0x1F, 0x81, 0x00, 0x01, 0x00}))), DecodeError::kBadTag, "multi-byte value tag"},
      {wrongTop, DecodeError::kBadTag, "SET instead of SEQUENCE"},
      {Wrap(vb, 0xA4), DecodeError::kBadTag, "trap PDU"},
      {Bytes({0x30, static_cast<int>(body.size())}) + body, DecodeError::kBadInteger, "5-byte request-id"},
      {Wrap(Vb(Bytes({0x06, 0x07, 0x2b, 0x90, 0x80, 0x80, 0x80, 0x80, 0x00}))), DecodeError::kBadOid,
       "sub-identifier overflow"},
      {Wrap(Vb(Bytes({0x06, 0x03, 0x2b, 0x06, 0x81}))), DecodeError::kBadOid, "dangling continuation bit"},
      {Wrap(Vb(Bytes({0x06, 0x00}))), DecodeError::kBadOid, "empty OID"},
      {Wrap(Vb(arcs129)), DecodeError::kBadOid, "129 arcs"},
      {Wrap(Vb(Bytes({0x06, 0x02, 0x2b, 0x80}))), DecodeError::kBadOid, "non-minimal sub-identifier"},
      {Wrap(Vb(Bytes({0x05, 0x01, 0x00}))), DecodeError::kBadValue, "NULL with content"},
      {Wrap(Vb(Bytes({0x40, 0x03, 1, 2, 3}))), DecodeError::kBadValue, "IpAddress of 3 bytes"},
      {Wrap(longer), DecodeError::kTruncated, "a varbind longer than its list"},
      {Wrap(Bytes({0x30, 0x0a, 0x06, 0x03, 0x2b, 0x06, 0x01, 0x02, 0x01, 0x05, 0x05, 0x00})),
       DecodeError::kTrailingBytes, "a varbind with a third element"},
  };
  for (const auto& c : cases) EXPECT_EQ(Decode(c.bytes), c.error) << c.what;
}

// A value this side cannot hold spoils only itself: the answer decodes, the value keeps its tag
// and bytes (so it encodes back unchanged) and renders like Opaque, and the error status of the
// answer still says what happened.
TEST(BerDecode, KeepsValuesItCannotHoldAsTheirBytes) {
  const struct {
    std::string tlv;
    const char* what;
  } cases[] = {
      {Bytes({0x02, 0x09, 1, 2, 3, 4, 5, 6, 7, 8, 9}), "INTEGER of 9 bytes"},
      {Bytes({0x02, 0x00}), "empty INTEGER"},
      {Bytes({0x41, 0x05, 0x01, 0, 0, 0, 0}), "Counter over 32 bits"},
      {Bytes({0x46, 0x0a, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0}), "Counter64 over 64 bits"},
      {Bytes({0x47, 0x02, 0xAB, 0xCD}), "a type SNMPv1 does not define"},
      {Bytes({0x30, 0x03, 0x02, 0x01, 0x05}), "constructed value"},
  };
  for (const auto& c : cases) {
    std::string pkt = Wrap(Vb(Bytes({0x02, 0x01, 0x05})) + Vb(c.tlv));
    pkt[pkt.find(Bytes({0x02, 0x01, 0x00, 0x02, 0x01, 0x00})) + 2] = 0x03;  // errorStatus badValue
    Message m;
    ASSERT_EQ(DecodeMessage(pkt, m), DecodeError::kOk) << c.what;
    EXPECT_EQ(m.pdu.errorStatus, kBadValue) << c.what;
    ASSERT_EQ(m.pdu.varbinds.size(), 2u) << c.what;
    EXPECT_EQ(m.pdu.varbinds[0].value, Value::Integer(5)) << "the other binding is whole";
    const Value& v = m.pdu.varbinds[1].value;
    EXPECT_TRUE(v.undecoded) << c.what;
    EXPECT_EQ(static_cast<char>(v.tag), c.tlv[0]) << c.what;
    EXPECT_EQ(v.bytes, c.tlv.substr(2)) << c.what;
    std::string again;
    ASSERT_TRUE(EncodeMessage(m, again)) << c.what;
    EXPECT_EQ(Hex(again), Hex(pkt)) << c.what;
  }
  Value odd;
  odd.tag = 0x47;
  odd.undecoded = true;
  odd.bytes = Bytes({0xAB, 0xCD});
  EXPECT_EQ(RenderValue(odd), "AB CD");
}

TEST(BerText, ParseAndFormatOids) {
  Oid o;
  EXPECT_TRUE(ParseOid(".1.3.6.1", o));
  EXPECT_EQ(FormatOid(o), "1.3.6.1");
  EXPECT_TRUE(ParseOid("1.3.4294967295", o));
  EXPECT_EQ(o.back(), 4294967295u);
  std::string arcs128 = "1.3";
  for (int i = 2; i < 128; ++i) arcs128 += ".7";
  EXPECT_TRUE(ParseOid(arcs128, o));
  for (const std::string& bad : {std::string("1.3.4294967296"), std::string(""), std::string("1"), std::string("1..3"),
                                 std::string("1.3."), std::string("1.3.a"), std::string("1.40"), std::string("3.1"),
                                 std::string(" 1.3"), arcs128 + ".7"})
    EXPECT_FALSE(ParseOid(bad, o)) << bad;
}

TEST(BerText, OrderAndPrefix) {
  EXPECT_LT(CompareOids(MakeOid("1.3.6.1.2"), MakeOid("1.3.6.1.2.0")), 0);
  EXPECT_LT(CompareOids(MakeOid("1.3.6.1.2.9"), MakeOid("1.3.6.1.10")), 0);
  EXPECT_EQ(CompareOids(MakeOid("1.3.6"), MakeOid("1.3.6")), 0);
  EXPECT_GT(CompareOids(MakeOid("1.3.7"), MakeOid("1.3.6.9.9")), 0);
  EXPECT_TRUE(OidIsUnder(MakeOid("1.3.6.1.5"), MakeOid("1.3.6.1")));
  EXPECT_FALSE(OidIsUnder(MakeOid("1.3.6.1"), MakeOid("1.3.6.1")));
  EXPECT_FALSE(OidIsUnder(MakeOid("1.3.6.10"), MakeOid("1.3.6.1")));
}
