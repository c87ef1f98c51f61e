// The host inventory read from the stand-in host (real COM objects, real MSXML, real
// registry) into a real tree-view control and a device list.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <vector>

#include "shell/host_inventory.h"
#include "tests/win/shell/shell_test_env.h"
#include "tests/win/support/message_box_catcher.h"
#include "ui/text.h"

using namespace sentrel_test;

namespace {

// The device list as the panel would hold it: a plain record of what the fill did to it.
class RecordingRows : public shell::DeviceRowList {
public:
    void DeleteAllRows() override { rows.clear(); }
    void AppendRow(const shell::DeviceRecord& record) override { rows.push_back(record); }
    int RowCount() const override { return static_cast<int>(rows.size()); }
    std::string RowIP(int row) const override {
        ++ipReads;
        return rows.at(static_cast<size_t>(row)).strIP;
    }
    void CheckSelectAndFocus(int row) override { checked.push_back(row); }
    // Every row as "name|type|ip|read|write|ID text|ID", separated by blanks.
    std::string Text() const {
        std::string out;
        for (const auto& r : rows)
            out += (out.empty() ? "" : " ") + r.strName + "|" + r.strDeviceType + "|" + r.strIP + "|" +
                   r.strReadCommunity + "|" + r.strWriteCommunity + "|" + r.strDeviceID + "|" +
                   std::to_string(r.nDeviceID);
        return out;
    }
    std::vector<shell::DeviceRecord> rows;
    std::vector<int> checked;
    mutable int ipReads = 0;
};

std::string Tree(const std::string& rootAttributes, const std::string& content) {
    return "<Operation><DDS><Root " + rootAttributes + ">" + content + "</Root></DDS></Operation>";
}
std::string Node(const char* element, const char* id, const char* name, const char* type, const std::string& inner = "") {
    return std::string("<") + element + " ID=\"" + id + "\" Name=\"" + name + "\" Type=\"" + type + "\">" + inner + "</" +
           element + ">";
}

class HostInventory : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        CoInitialize(nullptr);
        INITCOMMONCONTROLSEX icc{sizeof icc, ICC_TREEVIEW_CLASSES | ICC_LISTVIEW_CLASSES};
        InitCommonControlsEx(&icc);
        ui::SetResourceInstance(GetModuleHandleA(nullptr));  // this program links the plug-in's resources
        ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllRegisterServer"));
    }
    static void TearDownTestSuite() { CoUninitialize(); }

    void SetUp() override {
        ASSERT_FALSE(m_folder.Path().empty());
        SetEnvironmentVariableA("ORBLANE_SITE", m_site.c_str());
        DeleteRegTree(HKEY_CURRENT_USER, kSettingsKey);
        shell::g_lOpenedSubmapID = 0;
        m_tree = CreateWindowExA(0, WC_TREEVIEWA, "", WS_POPUP, 0, 0, 300, 400, nullptr, nullptr, nullptr, nullptr);
        ASSERT_NE(nullptr, m_tree);
    }
    void TearDown() override {
        DestroyWindow(m_tree);
        SetEnvironmentVariableA("ORBLANE_SITE", nullptr);
    }

    void WriteSite(const std::string& attributes, const std::string& tree, const std::string& rest = "") {
        ASSERT_TRUE(WriteTextFile(m_site, "<OrblaneSite " + attributes + "><DomainTree>" + tree + "</DomainTree>" + rest +
                                              "</OrblaneSite>"));
    }
    // A site whose node 11 lists `devices`, with the tree loaded.
    void WriteDevices(const std::string& devices, const std::string& siteAttributes = "") {
        WriteSite(siteAttributes, Tree("ID=\"1\"", Node("Domain", "10", "D", "0", Node("Submap", "11", "S", "0"))),
                  "<DeviceList Node=\"11\"><DEVICELIST>" + devices + "</DEVICELIST></DeviceList>" +
                      "<DeviceList Node=\"10\"><DEVICELIST>" + DeviceXml("2", "second", "TVR4820", "127.0.0.3") +
                      "</DEVICELIST></DeviceList>");
    }
    bool Load() {
        shell::CDomainTreeLoader loader;
        loader.SetTree(m_tree);
        return loader.Load();
    }

    TVITEMA Item(HTREEITEM item, char* text) const {
        TVITEMA tv{};
        tv.mask = TVIF_TEXT | TVIF_PARAM | TVIF_IMAGE | TVIF_STATE;
        tv.hItem = item;
        tv.pszText = text;
        tv.cchTextMax = 256;
        tv.stateMask = TVIS_BOLD | TVIS_EXPANDED;
        SendMessageA(m_tree, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&tv));
        return tv;
    }
    // The tree as "text#ID:image" per item, "*" when bold, "-" when not expanded, children in braces.
    std::string Render(HTREEITEM first) const {
        std::string out;
        for (HTREEITEM item = first; item; item = TreeView_GetNextSibling(m_tree, item)) {
            char text[256] = {};
            TVITEMA tv = Item(item, text);
            out += (out.empty() ? "" : ",") + std::string(text) + "#" + std::to_string(tv.lParam) + ":" +
                   std::to_string(tv.iImage) + ((tv.state & TVIS_BOLD) ? "*" : "");
            if (HTREEITEM child = TreeView_GetChild(m_tree, item))
                out += std::string((tv.state & TVIS_EXPANDED) ? "" : "-") + "{" + Render(child) + "}";
        }
        return out;
    }
    std::string Rendered() const { return Render(TreeView_GetRoot(m_tree)); }
    std::string SelectedText() const {
        char text[256] = {};
        HTREEITEM sel = TreeView_GetSelection(m_tree);
        return sel ? (Item(sel, text), std::string(text)) : "<none>";
    }
    // Loads the tree with that node as the opened submap, so it is selected, and fills the list.
    void FillFrom(long nodeId, RecordingRows& rows, long* current = nullptr) {
        shell::g_lOpenedSubmapID = nodeId;
        ASSERT_TRUE(Load());
        long dummy = 0;
        shell::FillDeviceListFromTree(m_tree, rows, current ? current : &dummy, nullptr);
    }
    std::string SavedList() const { return ReadTextFile(m_folder.File("RListDeviceFromGroup.xml")); }

    ScopedCurrentFolder m_folder{"sentrel_inventory_"};  // the device list file is written here
    const std::string m_site = m_folder.File("site.xml");
    HWND m_tree = nullptr;
};

TEST_F(HostInventory, TreeShowsDomainsAndSubmapsExpandedAndSelectsTheOpenedSubmap) {
    const std::string nested = Node("Domain", "10", "Headquarters", "0",
                                    Node("Submap", "11", "Core", "0", Node("Submap", "12", "Lab", "7"))) +
                               Node("Domain", "20", "Branch", "7", Node("Submap", "21", "Edge", "3"));
    const struct {
        const char* siteAttributes;
        const char* rootName;  // nullptr: no value
        std::string rootAttributes, content;
        long opened;
        const char* tree;
        const char* selected;
        const char* contextIdLogged;
    } cases[] = {
        {"ContextID=\"7\"", nullptr, "ID=\"1\"", nested, 11,
         "1#1:0*{Headquarters#10:2{Core#11:1{Lab#12:4}},Branch#20:4{Edge#21:1}}", "Core", "GetDomainTree 7\n"},
        {"", "Orblane Network", "ID=\"5\"", "", 5, "Orblane Network#5:0*", "Orblane Network", "GetDomainTree -1\n"},
        {"", "", "ID=\"5\"", "", -1, "5#5:0*", "<none>", nullptr},
        // Only the children of the root are domains; every deeper level holds submaps.
        {"", nullptr, "ID=\"1\"",
         Node("Submap", "2", "Stray", "0") + Node("Domain", "3", "D", "0", Node("Domain", "4", "Inner", "0") + Node("Submap", "5", "S", "0")),
         1, "1#1:0*{D#3:2{S#5:1}}", "1", nullptr},
        // Of two items with the opened ID, the one checked last: a parent after its children,
        // a later sibling after an earlier one.
        {"", nullptr, "ID=\"1\"", Node("Domain", "9", "Parent", "0", Node("Submap", "9", "Child", "0")), 9,
         "1#1:0*{Parent#9:2{Child#9:1}}", "Parent", nullptr},
        {"", nullptr, "ID=\"1\"", Node("Domain", "9", "First", "0") + Node("Domain", "9", "Second", "0"), 9,
         "1#1:0*{First#9:2,Second#9:2}", "Second", nullptr},
        // Missing attributes and text IDs: empty texts, ID 0.
        {"", nullptr, "", "<Domain><Submap/></Domain><Domain ID=\"abc\" Name=\"Text ID\" Type=\"seven\"/>", 0,
         "#0:0*{#0:2{#0:1},Text ID#0:2}", "Text ID", nullptr},
    };
    for (const auto& c : cases) {
        DeleteRegTree(HKEY_CURRENT_USER, kSettingsKey);
        if (c.rootName) {
            ASSERT_TRUE(SetRegString(HKEY_CURRENT_USER, kSettingsKey, "RootName", c.rootName));
        }
        WriteSite(c.siteAttributes, Tree(c.rootAttributes, c.content));
        shell::g_lOpenedSubmapID = c.opened;
        HostLog log;
        ASSERT_TRUE(Load()) << c.tree;
        EXPECT_EQ(c.tree, Rendered());
        EXPECT_EQ(c.selected, SelectedText()) << c.tree;
        if (c.contextIdLogged) {
            EXPECT_NE(std::string::npos, log.Text().find(c.contextIdLogged)) << log.Text();
        }
    }
}

TEST_F(HostInventory, DocumentWithoutOperationDdsOrRootLeavesTheTreeEmptyWithoutMessage) {
    for (const char* doc : {"<Other/>", "<Operation><Other/></Operation>",
                            "<Operation><DDS><NotRoot ID=\"1\"/></DDS></Operation>", ""}) {
        WriteSite("", Tree("ID=\"1\"", Node("Domain", "2", "x", "0")));
        ASSERT_TRUE(Load());
        WriteSite("", doc);
        MessageBoxCatcher boxes;
        EXPECT_FALSE(Load()) << doc;
        EXPECT_EQ("", Rendered()) << doc;
        EXPECT_TRUE(boxes.Caught().empty()) << doc;
    }
}

TEST_F(HostInventory, HostErrorShowsTheHostsTextAndKeepsTheTreeWhileResultOneIsSuccess) {
    WriteSite("", Tree("ID=\"1\"", Node("Domain", "2", "kept", "0")));
    ASSERT_TRUE(Load());
    WriteSite("TreeResult=\"1234\"", Tree("ID=\"1\"", ""),
              "<ErrorText Code=\"1234\">Domain tree unavailable: database offline</ErrorText>");
    MessageBoxCatcher boxes;
    EXPECT_FALSE(Load());
    ASSERT_EQ(1u, boxes.Caught().size());
    EXPECT_EQ("Domain tree unavailable: database offline", boxes.Caught()[0].text);
    EXPECT_EQ("Sentrel", boxes.Caught()[0].caption);
    EXPECT_EQ("1#1:0*{kept#2:2}", Rendered()) << "the tree is left as it was";

    boxes.Clear();
    WriteSite("TreeResult=\"1\"", Tree("ID=\"3\"", ""));
    EXPECT_TRUE(Load());
    EXPECT_EQ("3#3:0*", Rendered());
    EXPECT_TRUE(boxes.Caught().empty());

    // Without the host: no tree, no message.
    ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllUnregisterServer"));
    bool loaded = Load();
    ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllRegisterServer"));
    EXPECT_FALSE(loaded);
    EXPECT_TRUE(boxes.Caught().empty());
}

TEST_F(HostInventory, DeviceListRowsAreTheUsableElementsInOrder) {
    std::string missingChildren;
    for (const char* missing : {"ID", "NAME", "TYPE", "IP", "GETCOMM", "SETCOMM"}) {
        std::string d = DeviceXml("7", "lacks", "TVR4820", "127.0.0.2");
        const std::string open = std::string("<") + missing + ">", close = std::string("</") + missing + ">";
        d.erase(d.find(open), d.find(close) + close.size() - d.find(open));
        missingChildren += d;
    }
    const struct {
        std::string devices;
        const char* rows;
    } cases[] = {
        {DeviceXml("101", "core-sw1", "TVR4820", "127.0.0.2", "pub1", "priv1") + DeviceXml("102", "edge-sw2", "TVG5470", "127.0.0.3"),
         "core-sw1|TVR4820|127.0.0.2|pub1|priv1|101|101 edge-sw2|TVG5470|127.0.0.3|public|private|102|102"},
        {DeviceXml("1", "printer", "NonSNMPDevice", "127.0.0.9") + DeviceXml("2", "cam", "NonSNMPDevice", "127.0.0.8"), ""},
        {DeviceXml("1", "a", "nonsnmpdevice", "127.0.0.2") + DeviceXml("2", "b", "NonSNMPDevices", "127.0.0.3"),
         "a|nonsnmpdevice|127.0.0.2|public|private|1|1 b|NonSNMPDevices|127.0.0.3|public|private|2|2"},
        // An element without one of the six children is left out, as are attributes named like them.
        {missingChildren + "<DEVICEINFO ID=\"5\" NAME=\"attr\" TYPE=\"TVR4820\" IP=\"1.1.1.1\" GETCOMM=\"a\" SETCOMM=\"b\"/>" +
             DeviceXml("8", "complete", "TVR4820", "127.0.0.4"),
         "complete|TVR4820|127.0.0.4|public|private|8|8"},
        {"<DEVICEINFO><ID>n/a</ID><NAME/><TYPE>TVR4820</TYPE><IP></IP><GETCOMM/><SETCOMM/></DEVICEINFO>",
         "|TVR4820||||n/a|0"},
        {"<DEVICEINFO><ID>3</ID><NAME>core <b>sw</b>1</NAME><NAME>ignored</NAME><TYPE>T</TYPE><IP>i</IP>"
         "<GETCOMM>g</GETCOMM><SETCOMM>s</SETCOMM></DEVICEINFO>",
         "core sw1|T|i|g|s|3|3"},
    };
    for (const auto& c : cases) {
        WriteDevices(c.devices);
        RecordingRows rows;
        long current = 0;
        MessageBoxCatcher boxes;
        FillFrom(11, rows, &current);
        EXPECT_EQ(c.rows, rows.Text());
        EXPECT_EQ(11, current) << "the node ID is kept as the current node";
        EXPECT_TRUE(boxes.Caught().empty());
        EXPECT_NE(std::string::npos, SavedList().find(c.devices.substr(0, 30))) << "saved in the current directory";
    }
}

TEST_F(HostInventory, DeviceListFileIsRewrittenOnEveryFillAndLargeListsAreReadWhole) {
    std::string devices;
    for (int i = 0; i < 5000; ++i)
        devices += DeviceXml(std::to_string(i), "sw" + std::to_string(i), i % 7 ? "TVR4820" : "NonSNMPDevice",
                             "10.0." + std::to_string(i / 250) + "." + std::to_string(i % 250));
    WriteDevices(devices);
    RecordingRows rows;
    FillFrom(11, rows);
    EXPECT_EQ(5000 - 715, rows.RowCount());
    EXPECT_EQ("sw4999", rows.rows.back().strName);
    EXPECT_NE(std::string::npos, SavedList().find("sw4999"));
    FillFrom(10, rows);
    EXPECT_EQ("second|TVR4820|127.0.0.3|public|private|2|2", rows.Text());
    EXPECT_EQ(std::string::npos, SavedList().find("sw4999"));
}

TEST_F(HostInventory, DeviceListFailuresLeaveItEmptyAndOnlyAnUnsavableFileIsReported) {
    // The host fails for the node: empty, no message.
    WriteSite("", Tree("ID=\"1\"", Node("Domain", "13", "F", "0")), "<DeviceList Node=\"13\" Fail=\"1\"/>");
    RecordingRows rows;
    rows.AppendRow({});
    MessageBoxCatcher boxes;
    FillFrom(13, rows);
    EXPECT_EQ(0, rows.RowCount());
    EXPECT_TRUE(boxes.Caught().empty());

    // No tree item selected: empty, the current node kept.
    rows.AppendRow({});
    TreeView_SelectItem(m_tree, nullptr);
    long current = -5;
    shell::FillDeviceListFromTree(m_tree, rows, &current, nullptr);
    EXPECT_EQ(0, rows.RowCount());
    EXPECT_EQ(-5, current);
    EXPECT_TRUE(boxes.Caught().empty());

    // A folder in the file's place: the save fails as in a read-only directory.
    ASSERT_TRUE(CreateDirectoryA(m_folder.File("RListDeviceFromGroup.xml").c_str(), nullptr));
    WriteDevices(DeviceXml("1", "x", "TVR4820", "127.0.0.2"));
    FillFrom(11, rows);
    ASSERT_EQ(1u, boxes.Caught().size());
    EXPECT_EQ("Failed to get device list !", boxes.Caught()[0].text);
    EXPECT_EQ("Sentrel Config", boxes.Caught()[0].caption);
    EXPECT_EQ(0, rows.RowCount());
}

TEST_F(HostInventory, HostsCurrentDeviceIsCheckedAtItsFirstEqualRowOnly) {
    const std::string devices = DeviceXml("1", "a", "T", "127.0.0.2") + DeviceXml("2", "b", "T", "127.0.0.3") +
                                DeviceXml("3", "c", "T", "127.0.0.3") + DeviceXml("4", "d", "T", "127.0.0.4");
    const struct {
        const char* selectedIp;
        std::vector<int> checked;
        int ipReads;  // rows after the match are not looked at
    } cases[] = {{"127.0.0.3", {1}, 2}, {"", {}, 0}, {"127.0.0.30", {}, 4}};
    for (const auto& c : cases) {
        WriteDevices(devices, std::string("SelectedDeviceIP=\"") + c.selectedIp + "\"");
        RecordingRows rows;
        FillFrom(11, rows);
        shell::SelectHostCurrentDevice(rows);
        EXPECT_EQ(c.checked, rows.checked) << c.selectedIp;
        EXPECT_EQ(c.ipReads, rows.ipReads) << c.selectedIp;
        EXPECT_EQ(c.selectedIp, shell::HostSelectedDeviceIP());
    }
}

}  // namespace
