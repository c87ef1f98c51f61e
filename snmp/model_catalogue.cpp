#include "snmp/model_catalogue.h"

#include <climits>
#include <iterator>

namespace {

constexpr unsigned E = AclTypeBit(AclType::kEthernet);
constexpr unsigned V4 = AclTypeBit(AclType::kIPv4);
constexpr unsigned V6 = AclTypeBit(AclType::kIPv6);
constexpr unsigned PC = AclTypeBit(AclType::kPacketContent);

constexpr const char* kClose6 = "1.3.6.1.4.1.32473.12.1.2.6.0";
constexpr const char* kClose18 = "1.3.6.1.4.1.32473.12.1.2.18.4.0";

constexpr AccessIdRange A200{"Access ID(1-200)", 1, 200};
constexpr AccessIdRange A128{"Access ID(1-128)", 1, 128};
constexpr AccessIdRange A100{"Access ID(1-100)", 1, 100};
constexpr AccessIdRange A65535{"Access ID(1-65535)", 1, 65535};
constexpr AccessIdRange A0_65535{"Access ID(0-65535)", 0, 65535};
constexpr AccessIdRange A5{"Access ID(1-5)", 1, 5};
constexpr AccessIdRange ANone{nullptr, 0, 0};

constexpr RxRateRange RxTvg{"Rx Rate(1-156249)", "Rx Rate (1-156249)", 1, 156249, false};
constexpr RxRateRange Rx4512{"Rx Rate(1-15624)", "Rx Rate (1-15624)", 1, 15624, false};
constexpr RxRateRange Rx4060{"Rx Rate(0 or 64-1024000)", nullptr, 64, 1024000, true};
constexpr RxRateRange RxNone{nullptr, nullptr, 0, 0, false};

// Table 5: values after {ordinary profiles, ordinary rules}, {CPU profiles, CPU rules}.
constexpr ClosingRequest C6_5{kClose6, 5};
constexpr ClosingRequest C6_3{kClose6, 3};
constexpr ClosingRequest C18_3{kClose18, 3};
constexpr ClosingRequest C18_4{kClose18, 4};
constexpr ClosingRequest CNone{nullptr, 0};

constexpr ModelEntry Unsupported(const char* text) {
  return ModelEntry{text,      false,        MibLayout::kNone,  0,       {0, 0}, {0, 0},
                    PacketShape::kNone, PacketShape::kNone,
                    {{ANone, ANone, ANone, ANone}, {ANone, ANone, ANone, ANone}},
                    RxNone,    {{CNone, CNone}, {CNone, CNone}}};
}

// The models, their tables, ranges and closing requests. accessIds rows are {Ethernet, IPv4, IPv6, Packet Content}.
constexpr ModelEntry kCatalogue[] = {
    {"TVG5240-10", true, MibLayout::kLayout2, 10,
     {E | V4 | V6 | PC, E | V4 | V6 | PC}, {E | V4 | V6 | PC, E | V4 | V6 | PC},
     PacketShape::kChunks4, PacketShape::kChunks4,
     {{A200, A200, A200, A200}, {A200, A200, A200, A200}},
     RxTvg, {{C6_5, C6_5}, {C6_5, C6_5}}},
    {"TVG5470", true, MibLayout::kLayout2, 24,
     {E | V4 | V6, E | V4 | PC}, {E | V4 | V6, E | V4 | PC},
     PacketShape::kNone, PacketShape::kNone,
     {{A128, A128, A128, ANone}, {A100, A100, A100, A200}},
     RxTvg, {{C6_5, C6_5}, {C6_5, C6_5}}},
    {"TVG5690", true, MibLayout::kLayout2, 50,
     {E | V4 | V6 | PC, E | V4 | V6 | PC}, {E | V4 | V6 | PC, E | V4 | V6 | PC},
     PacketShape::kChunks4, PacketShape::kChunks4,
     {{A128, A128, A128, A128}, {A100, A128, A100, A100}},
     RxTvg, {{C18_3, C18_3}, {C18_4, C18_3}}},
    {"TVR4060", true, MibLayout::kLayout2, 26,
     {E | V4 | PC, E | V4 | PC}, {E | V4 | PC, E | V4 | PC},
     PacketShape::kOffsetItems, PacketShape::kBlock16,
     {{A65535, A65535, A65535, A65535}, {A65535, A5, A65535, A5}},
     Rx4060, {{C6_5, C6_5}, {C6_5, C6_5}}},
    {"TVR4510", true, MibLayout::kLayout1, 26,
     {E | V4 | PC, E | V4 | PC}, {E | V4 | PC, E | V4 | PC},
     PacketShape::kBlock16, PacketShape::kBlock16,
     {{A65535, A65535, A0_65535, A65535}, {A65535, A65535, A0_65535, A65535}},
     RxNone, {{C6_3, C6_3}, {C6_3, C6_3}}},
    {"TVR4820", true, MibLayout::kLayout2, 28,
     {E | V4 | V6 | PC, E | V4 | PC}, {E | V4 | V6 | PC, E | V4 | PC},
     PacketShape::kBlock16, PacketShape::kBlock16,
     {{A65535, A65535, A65535, A65535}, {A65535, A65535, A65535, A65535}},
     RxNone, {{C6_5, C6_5}, {C6_5, C6_5}}},
    {"TVR4512", true, MibLayout::kLayout2, 28,
     {E | V4 | V6 | PC, E | V4 | V6 | PC}, {E | V4 | V6 | PC, E | V4 | V6 | PC},
     PacketShape::kChunks4, PacketShape::kChunks4,
     {{A128, A128, A128, A128}, {A100, A100, A100, A100}},
     Rx4512, {{C6_5, C6_5}, {C6_5, C6_5}}},
    Unsupported("TVG-5240"),
    Unsupported("TVG-5140"),
    Unsupported("TVG-5440"),
    Unsupported("TVG-5640"),
    Unsupported("TVG5580"),
    Unsupported("TVR-4510"),
    Unsupported("TVR-4820"),
    Unsupported("TVR-4512"),
    Unsupported("TVR-4060"),
};

size_t OwnerIndex(AclOwner owner) { return owner == AclOwner::kCpu ? 1 : 0; }

}  // namespace

std::optional<AccessIdRange> ModelEntry::accessIdRange(AclOwner owner, AclType ruleType) const {
  if (!supported) return std::nullopt;
  const AccessIdRange& r = accessIds[OwnerIndex(owner)][static_cast<size_t>(ruleType)];
  if (r.label == nullptr) return std::nullopt;
  return r;
}

std::optional<RxRateRange> ModelEntry::rxRange() const {
  if (!supported || rx.label == nullptr) return std::nullopt;
  return rx;
}

bool ModelEntry::offersRuleType(AclOwner owner, AclType type) const {
  return supported && (ruleTypes[OwnerIndex(owner)] & AclTypeBit(type)) != 0;
}

bool ModelEntry::offersProfileType(AclOwner owner, AclType type) const {
  return supported && (profileTypes[OwnerIndex(owner)] & AclTypeBit(type)) != 0;
}

PacketShape ModelEntry::packetShape(AclOwner owner) const {
  return packetShape(owner, AclKind::kRules);
}

PacketShape ModelEntry::packetShape(AclOwner owner, AclKind kind) const {
  if (!supported) return PacketShape::kNone;
  if (owner == AclOwner::kCpu) {
    unsigned set = kind == AclKind::kRules ? ruleTypes[1] : profileTypes[1];
    return (set & PC) ? PacketShape::kBlock16 : PacketShape::kNone;
  }
  return kind == AclKind::kRules ? ruleShape : profileShape;
}

std::optional<ClosingRequest> ModelEntry::closingRequest(AclOwner owner, AclKind kind) const {
  if (!supported) return std::nullopt;
  return closing[OwnerIndex(owner)][static_cast<size_t>(kind)];
}

const ModelEntry* LookupModel(std::string_view typeText) {
  for (const ModelEntry& m : kCatalogue) {
    if (typeText == std::string_view(m.typeText)) return &m;
  }
  return nullptr;
}

const ModelEntry* LookupSupportedModel(std::string_view typeText) {
  const ModelEntry* m = LookupModel(typeText);
  return m != nullptr && m->supported ? m : nullptr;
}

const ModelEntry* CatalogueBegin() { return std::begin(kCatalogue); }
const ModelEntry* CatalogueEnd() { return std::end(kCatalogue); }

long ParseLeadingDecimal(std::string_view text) {
  size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || text[i] == '\t' || text[i] == '\n' ||
                             text[i] == '\r' || text[i] == '\f' || text[i] == '\v'))
    ++i;
  bool neg = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
    neg = text[i] == '-';
    ++i;
  }
  // Saturate at LONG_MAX / LONG_MIN (long is 32 bits on Windows, 64 on Linux).
  const unsigned long long limit = static_cast<unsigned long long>(LONG_MAX) + (neg ? 1 : 0);
  unsigned long long v = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    unsigned d = static_cast<unsigned>(text[i] - '0');
    if (v > (limit - d) / 10) {
      v = limit;
      break;
    }
    v = v * 10 + d;
  }
  if (neg) return v == 0 ? 0 : static_cast<long>(-static_cast<long long>(v - 1) - 1);
  return static_cast<long>(v);
}

RangeCheck CheckRange(std::string_view text, long min, long max, bool zeroAllowed) {
  if (text.empty()) return RangeCheck::kEmpty;
  long v = ParseLeadingDecimal(text);
  if ((v >= min && v <= max) || (zeroAllowed && v == 0)) return RangeCheck::kInRange;
  return RangeCheck::kOutOfRange;
}

RangeCheck CheckAccessId(const ModelEntry& model, AclOwner owner, AclType ruleType,
                         std::string_view text) {
  if (text.empty()) return RangeCheck::kEmpty;
  auto r = model.accessIdRange(owner, ruleType);
  if (!r) return RangeCheck::kOutOfRange;
  return CheckRange(text, r->min, r->max);
}

RangeCheck CheckRxRate(const ModelEntry& model, std::string_view text) {
  if (text.empty()) return RangeCheck::kEmpty;
  auto r = model.rxRange();
  if (!r) return RangeCheck::kOutOfRange;
  return CheckRange(text, r->min, r->max, r->zeroAllowed);
}
