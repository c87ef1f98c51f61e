// Page 17 `CACLAddPacketRule` ("Add Rule: Rule Detail", packet content): one row per part of
// the packet the model's layout matches, each with a check box that enables its fields: four
// chunks (offset and value), five content items (offset and value) or five 16-byte ranges.
#pragma once
#include <array>

#include "acl/wizard/rule_definition_page.h"

namespace acl::wizard {

class CACLAddPacketRule : public CRuleDefinitionPage {
public:
    CACLAddPacketRule();

protected:
    std::span<const std::string> ChosenProfile() const override;
    void EnableTypeFields(const acl::RuleEnabling& enabling) override;
    void ReadTypeFields(RuleFields& fields) const override;
    void WriteTypeFields(const RuleFields& fields) override;
    void ClearTypeFields() override;
    BOOL OnTypeCommand(int id, int code) override;

private:
    PacketShape Shape() const;
    int Rows() const { return Shape() == PacketShape::kChunks4 ? 4 : 5; }
    void EnableRow(int i);
    void WidenValuesOverOffsets(bool widen);

    // Where the dialog places the value label and the five value fields, in page pixels.
    std::array<LONG, 6> m_valueLeft{};
};

}  // namespace acl::wizard
