// The host inventory read from the stand-in host (real COM objects, real MSXML,
// real registry) into a real tree-view control and a device list.
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
    struct Row {
        shell::DeviceRecord record;
        bool checked = false;
        bool selectedAndFocused = false;
    };
    void DeleteAllRows() override {
        rows.clear();
        ++clears;
    }
    void AppendRow(const shell::DeviceRecord& record) override { rows.push_back({record}); }
    int RowCount() const override { return static_cast<int>(rows.size()); }
    std::string RowIP(int row) const override {
        ++ipReads;
        return rows.at(static_cast<size_t>(row)).record.strIP;
    }
    void CheckSelectAndFocus(int row) override {
        rows.at(static_cast<size_t>(row)).checked = true;
        rows.at(static_cast<size_t>(row)).selectedAndFocused = true;
    }
    std::vector<Row> rows;
    int clears = 0;
    mutable int ipReads = 0;
};

struct TreeNode {
    std::string text;
    long id;
    int image;
    bool bold;
    bool expanded;
    std::vector<TreeNode> children;
};

std::string Device(const std::string& id, const std::string& name, const std::string& type, const std::string& ip,
                   const std::string& get = "public", const std::string& set = "private") {
    return "<DEVICEINFO><ID>" + id + "</ID><NAME>" + name + "</NAME><TYPE>" + type + "</TYPE><IP>" + ip +
           "</IP><GETCOMM>" + get + "</GETCOMM><SETCOMM>" + set + "</SETCOMM></DEVICEINFO>";
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
        m_folder = MakeTempFolder("sentrel_inventory_");
        ASSERT_FALSE(m_folder.empty());
        GetCurrentDirectoryA(MAX_PATH, m_oldDirectory);
        SetCurrentDirectoryA(m_folder.c_str());
        m_site = m_folder + "\\site.xml";
        SetEnvironmentVariableA("ORBLANE_SITE", m_site.c_str());
        DeleteRegTree(HKEY_CURRENT_USER, kSettingsKey);
        shell::g_lOpenedSubmapID = 0;
        m_tree = CreateWindowExA(0, WC_TREEVIEWA, "", WS_POPUP | TVS_HASLINES | TVS_HASBUTTONS | TVS_LINESATROOT,
                                 0, 0, 300, 400, nullptr, nullptr, nullptr, nullptr);
        ASSERT_NE(nullptr, m_tree);
    }
    void TearDown() override {
        DestroyWindow(m_tree);
        SetCurrentDirectoryA(m_oldDirectory);
        SetEnvironmentVariableA("ORBLANE_SITE", nullptr);
    }

    void WriteSite(const std::string& attributes, const std::string& tree, const std::string& lists = "") {
        ASSERT_TRUE(WriteTextFile(m_site, "<OrblaneSite " + attributes + "><DomainTree>" + tree + "</DomainTree>" +
                                              lists + "</OrblaneSite>"));
    }
    // A tree with the root and the given content below it.
    static std::string Tree(const std::string& rootAttributes, const std::string& content) {
        return "<Operation><DDS><Root " + rootAttributes + ">" + content + "</Root></DDS></Operation>";
    }

    std::vector<TreeNode> ReadTree(HTREEITEM parent = TVI_ROOT) const {
        std::vector<TreeNode> out;
        HTREEITEM item = parent == TVI_ROOT ? TreeView_GetRoot(m_tree) : TreeView_GetChild(m_tree, parent);
        for (; item; item = TreeView_GetNextSibling(m_tree, item)) {
            char text[256] = {};
            TVITEMA tv{};
            tv.mask = TVIF_TEXT | TVIF_PARAM | TVIF_IMAGE | TVIF_STATE;
            tv.hItem = item;
            tv.pszText = text;
            tv.cchTextMax = sizeof text;
            tv.stateMask = TVIS_BOLD | TVIS_EXPANDED;
            SendMessageA(m_tree, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&tv));
            out.push_back({text, static_cast<long>(tv.lParam), tv.iImage, (tv.state & TVIS_BOLD) != 0,
                           (tv.state & TVIS_EXPANDED) != 0, ReadTree(item)});
        }
        return out;
    }
    std::string SelectedText() const {
        HTREEITEM sel = TreeView_GetSelection(m_tree);
        if (!sel) return "<none>";
        char text[256] = {};
        TVITEMA tv{};
        tv.mask = TVIF_TEXT;
        tv.hItem = sel;
        tv.pszText = text;
        tv.cchTextMax = sizeof text;
        SendMessageA(m_tree, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&tv));
        return text;
    }
    bool Load() {
        shell::CDomainTreeLoader loader;
        loader.SetTree(m_tree);
        return loader.Load();
    }
    // Selects the tree item with that node ID (searching the whole tree) and fills the list.
    void FillFrom(long nodeId, RecordingRows& rows, long* current = nullptr) {
        std::vector<HTREEITEM> stack{TreeView_GetRoot(m_tree)};
        while (!stack.empty()) {
            HTREEITEM item = stack.back();
            stack.pop_back();
            if (!item) continue;
            TVITEMA tv{};
            tv.mask = TVIF_PARAM;
            tv.hItem = item;
            SendMessageA(m_tree, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&tv));
            if (tv.lParam == nodeId) {
                TreeView_SelectItem(m_tree, item);
                break;
            }
            stack.push_back(TreeView_GetNextSibling(m_tree, item));
            stack.push_back(TreeView_GetChild(m_tree, item));
        }
        long dummy = 0;
        shell::FillDeviceListFromTree(m_tree, rows, current ? current : &dummy, nullptr);
    }

    std::string m_folder, m_site;
    char m_oldDirectory[MAX_PATH] = {};
    HWND m_tree = nullptr;
};

// ---------------------------------------------------------------------------------------
// Registry

TEST_F(HostInventory, RegistryStringsAreReadWithinSixtyBytes) {
    const std::string key = kSettingsKey;
    ASSERT_TRUE(SetRegString(HKEY_CURRENT_USER, key, "RootName", std::string(59, 'r')));
    EXPECT_EQ(std::string(59, 'r'), shell::ReadRegistryString(shell::SettingsKeyPath(), "RootName"));
    ASSERT_TRUE(SetRegString(HKEY_CURRENT_USER, key, "RootName", std::string(60, 'r')));
    EXPECT_EQ("", shell::ReadRegistryString(shell::SettingsKeyPath(), "RootName")) << "60 characters do not fit";
    ASSERT_TRUE(SetRegString(HKEY_CURRENT_USER, key, "RootName", std::string(500, 'r')));
    EXPECT_EQ("", shell::ReadRegistryString(shell::SettingsKeyPath(), "RootName"));
    EXPECT_EQ("", shell::ReadRegistryString(shell::SettingsKeyPath(), "NoSuchValue"));
    EXPECT_EQ("", shell::ReadRegistryString("Software\\Kestrix\\NoSuchKey", "RootName"));
}

TEST_F(HostInventory, KeyPathsComeFromTheStringTable) {
    EXPECT_EQ("Software\\Kestrix\\OrblaneNMS\\Settings", shell::SettingsKeyPath());
    EXPECT_EQ("Software\\Kestrix\\Function\\DeviceType", shell::DeviceTypesKeyPath());
}

TEST(AsciiToLong, ConvertsLikeTheCLibrary) {
    EXPECT_EQ(42, shell::AsciiToLong("42"));
    EXPECT_EQ(-7, shell::AsciiToLong("  -7"));
    EXPECT_EQ(12, shell::AsciiToLong("12abc"));
    EXPECT_EQ(0, shell::AsciiToLong("abc"));
    EXPECT_EQ(0, shell::AsciiToLong(""));
    EXPECT_EQ(2147483647, shell::AsciiToLong("99999999999999999999"));
    EXPECT_EQ(-2147483647 - 1, shell::AsciiToLong("-99999999999999999999"));
}

// ---------------------------------------------------------------------------------------
// Tree building

TEST_F(HostInventory, BuildsDomainsAndSubmapsToAnyDepthExpandedWithTheirImages) {
    WriteSite("ContextID=\"7\"",
              Tree("ID=\"1\"", "<Domain ID=\"10\" Name=\"Headquarters\" Type=\"0\">"
                               "  <Submap ID=\"11\" Name=\"Core\" Type=\"0\">"
                               "    <Submap ID=\"12\" Name=\"Lab\" Type=\"7\"/>"
                               "  </Submap>"
                               "</Domain>"
                               "<Domain ID=\"20\" Name=\"Branch\" Type=\"7\"><Submap ID=\"21\" Name=\"Edge\" Type=\"3\"/></Domain>"));
    HostLog log;
    ASSERT_TRUE(Load());
    auto tree = ReadTree();
    ASSERT_EQ(1u, tree.size());
    const TreeNode& root = tree[0];
    EXPECT_EQ("1", root.text) << "no RootName: the root shows its ID";
    EXPECT_EQ(1, root.id);
    EXPECT_TRUE(root.bold);
    EXPECT_EQ(0, root.image);
    ASSERT_EQ(2u, root.children.size());
    EXPECT_EQ("Headquarters", root.children[0].text);
    EXPECT_EQ(10, root.children[0].id);
    EXPECT_EQ(2, root.children[0].image) << "domain";
    EXPECT_FALSE(root.children[0].bold);
    ASSERT_EQ(1u, root.children[0].children.size());
    EXPECT_EQ("Core", root.children[0].children[0].text);
    EXPECT_EQ(1, root.children[0].children[0].image) << "submap";
    ASSERT_EQ(1u, root.children[0].children[0].children.size());
    EXPECT_EQ("Lab", root.children[0].children[0].children[0].text);
    EXPECT_EQ(4, root.children[0].children[0].children[0].image) << "type 7";
    EXPECT_EQ(4, root.children[1].image) << "a domain of type 7";
    EXPECT_EQ(1, root.children[1].children[0].image);
    EXPECT_TRUE(root.expanded);
    EXPECT_TRUE(root.children[0].expanded);
    EXPECT_TRUE(root.children[0].children[0].expanded);
    EXPECT_NE(std::string::npos, log.Text().find("GetDomainTree 7\n")) << "the host's context ID is passed on: " << log.Text();
}

TEST_F(HostInventory, ContextIdIsMinusOneWhenTheHostSetsNone) {
    WriteSite("", Tree("ID=\"1\"", ""));
    HostLog log;
    ASSERT_TRUE(Load());
    EXPECT_NE(std::string::npos, log.Text().find("GetDomainTree -1\n"));
}

TEST_F(HostInventory, RootNameReplacesTheRootText) {
    ASSERT_TRUE(SetRegString(HKEY_CURRENT_USER, kSettingsKey, "RootName", "Orblane Network"));
    WriteSite("", Tree("ID=\"5\"", ""));
    ASSERT_TRUE(Load());
    auto tree = ReadTree();
    ASSERT_EQ(1u, tree.size());
    EXPECT_EQ("Orblane Network", tree[0].text);
    EXPECT_EQ(5, tree[0].id);
    EXPECT_TRUE(tree[0].bold);
}

TEST_F(HostInventory, EmptyRootNameLeavesTheIdInBold) {
    ASSERT_TRUE(SetRegString(HKEY_CURRENT_USER, kSettingsKey, "RootName", ""));
    WriteSite("", Tree("ID=\"5\"", ""));
    ASSERT_TRUE(Load());
    auto tree = ReadTree();
    EXPECT_EQ("5", tree[0].text);
    EXPECT_TRUE(tree[0].bold);
}

TEST_F(HostInventory, SubmapBelowRootAndDomainBelowDomainAreNotShown) {
    WriteSite("", Tree("ID=\"1\"", "<Submap ID=\"2\" Name=\"Stray submap\" Type=\"0\"/>"
                                   "<Domain ID=\"3\" Name=\"D\" Type=\"0\">"
                                   "  <Domain ID=\"4\" Name=\"Inner domain\" Type=\"0\"/>"
                                   "  <Submap ID=\"5\" Name=\"S\" Type=\"0\"/>"
                                   "</Domain>"));
    ASSERT_TRUE(Load());
    auto tree = ReadTree();
    ASSERT_EQ(1u, tree[0].children.size());
    EXPECT_EQ("D", tree[0].children[0].text);
    ASSERT_EQ(1u, tree[0].children[0].children.size());
    EXPECT_EQ("S", tree[0].children[0].children[0].text);
}

TEST_F(HostInventory, OpenedSubmapIsSelected) {
    WriteSite("", Tree("ID=\"1\"", "<Domain ID=\"10\" Name=\"D\" Type=\"0\"><Submap ID=\"11\" Name=\"S\" Type=\"0\"/></Domain>"));
    shell::g_lOpenedSubmapID = 11;
    ASSERT_TRUE(Load());
    EXPECT_EQ("S", SelectedText());
    shell::g_lOpenedSubmapID = 1;
    ASSERT_TRUE(Load());
    EXPECT_EQ("1", SelectedText()) << "the root itself";
}

TEST_F(HostInventory, OpenedSubmapMinusOneSelectsNothing) {
    WriteSite("", Tree("ID=\"1\"", "<Domain ID=\"10\" Name=\"D\" Type=\"0\"/>"));
    shell::g_lOpenedSubmapID = -1;
    ASSERT_TRUE(Load());
    EXPECT_EQ("<none>", SelectedText());
}

TEST_F(HostInventory, WithTwoEqualIdsTheItemCheckedLastIsSelected) {
    // A parent is checked after all its descendants: the domain wins over its submap.
    WriteSite("", Tree("ID=\"1\"", "<Domain ID=\"9\" Name=\"Parent\" Type=\"0\"><Submap ID=\"9\" Name=\"Child\" Type=\"0\"/></Domain>"));
    shell::g_lOpenedSubmapID = 9;
    ASSERT_TRUE(Load());
    EXPECT_EQ("Parent", SelectedText());
    // Between siblings, the later one.
    WriteSite("", Tree("ID=\"1\"", "<Domain ID=\"9\" Name=\"First\" Type=\"0\"/><Domain ID=\"9\" Name=\"Second\" Type=\"0\"/>"));
    ASSERT_TRUE(Load());
    EXPECT_EQ("Second", SelectedText());
}

TEST_F(HostInventory, MissingOperationDdsOrRootLeavesTheTreeEmpty) {
    const char* documents[] = {
        "<Other/>",
        "<Operation><Other/></Operation>",
        "<Operation><DDS><NotRoot ID=\"1\"/></DDS></Operation>",
        "",
    };
    for (const char* doc : documents) {
        WriteSite("", Tree("ID=\"1\"", "<Domain ID=\"2\" Name=\"x\" Type=\"0\"/>"));
        ASSERT_TRUE(Load());
        ASSERT_EQ(1u, ReadTree().size());
        WriteSite("", doc);
        MessageBoxCatcher boxes;
        EXPECT_FALSE(Load()) << doc;
        EXPECT_TRUE(ReadTree().empty()) << doc;
        EXPECT_TRUE(boxes.Caught().empty()) << doc;
    }
}

TEST_F(HostInventory, ElementsWithoutAttributesOrWithTextIdsStillBuildATree) {
    WriteSite("", Tree("", "<Domain><Submap/></Domain><Domain ID=\"abc\" Name=\"Text ID\" Type=\"seven\"/>"));
    shell::g_lOpenedSubmapID = 0;
    ASSERT_TRUE(Load());
    auto tree = ReadTree();
    ASSERT_EQ(1u, tree.size());
    EXPECT_EQ("", tree[0].text) << "a root without ID shows an empty ID";
    EXPECT_EQ(0, tree[0].id);
    ASSERT_EQ(2u, tree[0].children.size());
    EXPECT_EQ("", tree[0].children[0].text);
    EXPECT_EQ(0, tree[0].children[0].id);
    EXPECT_EQ(2, tree[0].children[0].image);
    EXPECT_EQ(1u, tree[0].children[0].children.size());
    EXPECT_EQ(0, tree[0].children[1].id) << "text IDs convert to 0";
    EXPECT_EQ(2, tree[0].children[1].image);
    // Every ID here is 0, as is the opened submap: the item checked last is the second domain.
    EXPECT_EQ("Text ID", SelectedText());
}

TEST_F(HostInventory, HostErrorResultShowsTheHostsTextAndKeepsTheTree) {
    WriteSite("", Tree("ID=\"1\"", "<Domain ID=\"2\" Name=\"kept\" Type=\"0\"/>"));
    ASSERT_TRUE(Load());
    ASSERT_TRUE(WriteTextFile(m_site, "<OrblaneSite TreeResult=\"1234\"><ErrorText Code=\"1234\">Domain tree "
                                      "unavailable: database offline</ErrorText><DomainTree>" +
                                          Tree("ID=\"1\"", "") + "</DomainTree></OrblaneSite>"));
    MessageBoxCatcher boxes;
    EXPECT_FALSE(Load());
    ASSERT_EQ(1u, boxes.Caught().size());
    EXPECT_EQ("Domain tree unavailable: database offline", boxes.Caught()[0].text);
    EXPECT_EQ("Sentrel", boxes.Caught()[0].caption);
    auto tree = ReadTree();
    ASSERT_EQ(1u, tree.size()) << "the tree is left as it was";
    EXPECT_EQ("kept", tree[0].children.at(0).text);
}

TEST_F(HostInventory, ResultOneCountsAsSuccess) {
    WriteSite("TreeResult=\"1\"", Tree("ID=\"1\"", ""));
    MessageBoxCatcher boxes;
    EXPECT_TRUE(Load());
    EXPECT_TRUE(boxes.Caught().empty());
}

TEST_F(HostInventory, WithoutTheHostNoTreeAndNoMessage) {
    WriteSite("", Tree("ID=\"1\"", ""));
    ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllUnregisterServer"));
    MessageBoxCatcher boxes;
    bool loaded = Load();
    ASSERT_EQ(S_OK, CallDllExport(OrblaneHostDll(), "DllRegisterServer"));
    EXPECT_FALSE(loaded);
    EXPECT_TRUE(boxes.Caught().empty());
}

// ---------------------------------------------------------------------------------------
// Device list

class DeviceList : public HostInventory {
protected:
    void WriteDevices(const std::string& nodeContent, const std::string& extraLists = "") {
        WriteSite("", Tree("ID=\"1\"", "<Domain ID=\"10\" Name=\"D\" Type=\"0\"><Submap ID=\"11\" Name=\"S\" Type=\"0\"/></Domain>"),
                  "<DeviceList Node=\"11\"><DEVICELIST>" + nodeContent + "</DEVICELIST></DeviceList>" + extraLists);
        ASSERT_TRUE(Load());
    }
};

TEST_F(DeviceList, RowsCarryTheSixFieldsInOrderAndTheFileIsSaved) {
    WriteDevices(Device("101", "core-sw1", "TVR4820", "127.0.0.2", "pub1", "priv1") +
                 Device("102", "edge-sw2", "TVG5470", "127.0.0.3"));
    RecordingRows rows;
    long current = 0;
    MessageBoxCatcher boxes;
    FillFrom(11, rows, &current);
    EXPECT_EQ(11, current) << "the node ID is kept as the current node";
    ASSERT_EQ(2, rows.RowCount());
    const auto& r = rows.rows[0].record;
    EXPECT_EQ("core-sw1", r.strName);
    EXPECT_EQ("TVR4820", r.strDeviceType);
    EXPECT_EQ("127.0.0.2", r.strIP);
    EXPECT_EQ("pub1", r.strReadCommunity);
    EXPECT_EQ("priv1", r.strWriteCommunity);
    EXPECT_EQ("101", r.strDeviceID);
    EXPECT_EQ(101, r.nDeviceID);
    EXPECT_FALSE(rows.rows[0].checked);
    EXPECT_EQ("edge-sw2", rows.rows[1].record.strName);
    EXPECT_TRUE(boxes.Caught().empty());
    bool found = false;
    std::string saved = ReadTextFile(m_folder + "\\RListDeviceFromGroup.xml", &found);
    EXPECT_TRUE(found) << "saved in the current directory";
    EXPECT_NE(std::string::npos, saved.find("core-sw1"));
}

TEST_F(DeviceList, FileIsRewrittenOnEveryFill) {
    WriteDevices(Device("1", "first", "TVR4820", "127.0.0.2"),
                 "<DeviceList Node=\"10\"><DEVICELIST>" + Device("2", "second", "TVR4820", "127.0.0.3") +
                     "</DEVICELIST></DeviceList>");
    RecordingRows rows;
    FillFrom(11, rows);
    EXPECT_NE(std::string::npos, ReadTextFile(m_folder + "\\RListDeviceFromGroup.xml").find("first"));
    FillFrom(10, rows);
    std::string saved = ReadTextFile(m_folder + "\\RListDeviceFromGroup.xml");
    EXPECT_NE(std::string::npos, saved.find("second"));
    EXPECT_EQ(std::string::npos, saved.find("first"));
}

TEST_F(DeviceList, OnlyNonSnmpDevicesGiveAnEmptyListWithoutMessage) {
    WriteDevices(Device("1", "printer", "NonSNMPDevice", "127.0.0.9") + Device("2", "camera", "NonSNMPDevice", "127.0.0.8"));
    RecordingRows rows;
    MessageBoxCatcher boxes;
    FillFrom(11, rows);
    EXPECT_EQ(0, rows.RowCount());
    EXPECT_TRUE(boxes.Caught().empty());
}

TEST_F(DeviceList, NonSnmpMatchIsExactAndCaseSensitive) {
    WriteDevices(Device("1", "a", "nonsnmpdevice", "127.0.0.2") + Device("2", "b", "NonSNMPDevices", "127.0.0.3"));
    RecordingRows rows;
    FillFrom(11, rows);
    EXPECT_EQ(2, rows.RowCount());
}

TEST_F(DeviceList, ElementsMissingAChildAreLeftOutAndLaterOnesListed) {
    const char* fields[] = {"ID", "NAME", "TYPE", "IP", "GETCOMM", "SETCOMM"};
    std::string content;
    for (const char* missing : fields) {
        std::string d = Device("7", "lacks", "TVR4820", "127.0.0.2");
        std::string open = std::string("<") + missing + ">";
        std::string close = std::string("</") + missing + ">";
        d.erase(d.find(open), d.find(close) + close.size() - d.find(open));
        content += d;
    }
    content += "<DEVICEINFO ID=\"5\" NAME=\"attr\" TYPE=\"TVR4820\" IP=\"1.1.1.1\" GETCOMM=\"a\" SETCOMM=\"b\"/>";
    content += Device("8", "complete", "TVR4820", "127.0.0.4");
    WriteDevices(content);
    RecordingRows rows;
    MessageBoxCatcher boxes;
    FillFrom(11, rows);
    ASSERT_EQ(1, rows.RowCount()) << "attributes named like the fields are not read";
    EXPECT_EQ("complete", rows.rows[0].record.strName);
    EXPECT_TRUE(boxes.Caught().empty());
}

TEST_F(DeviceList, EmptyChildrenAreAcceptedAndTextIdsConvertToZero) {
    WriteDevices("<DEVICEINFO><ID>n/a</ID><NAME/><TYPE>TVR4820</TYPE><IP></IP><GETCOMM/><SETCOMM/></DEVICEINFO>");
    RecordingRows rows;
    FillFrom(11, rows);
    ASSERT_EQ(1, rows.RowCount());
    EXPECT_EQ("", rows.rows[0].record.strName);
    EXPECT_EQ("n/a", rows.rows[0].record.strDeviceID);
    EXPECT_EQ(0, rows.rows[0].record.nDeviceID);
}

TEST_F(DeviceList, FirstChildOfEachNameCountsWithItsWholeText) {
    WriteDevices("<DEVICEINFO><ID>3</ID><NAME>core <b>sw</b>1</NAME><NAME>ignored</NAME><TYPE>TVR4820</TYPE>"
                 "<IP>127.0.0.2</IP><GETCOMM>public</GETCOMM><SETCOMM>private</SETCOMM></DEVICEINFO>");
    RecordingRows rows;
    FillFrom(11, rows);
    ASSERT_EQ(1, rows.RowCount());
    EXPECT_EQ("core sw1", rows.rows[0].record.strName);
}

TEST_F(DeviceList, HostFailureLeavesTheListEmptyWithoutMessage) {
    WriteDevices(Device("1", "x", "TVR4820", "127.0.0.2"), "");
    ASSERT_TRUE(WriteTextFile(m_site, "<OrblaneSite><DomainTree>" +
                                          Tree("ID=\"1\"", "<Domain ID=\"13\" Name=\"F\" Type=\"0\"/>") +
                                          "</DomainTree><DeviceList Node=\"13\" Fail=\"1\"/></OrblaneSite>"));
    ASSERT_TRUE(Load());
    RecordingRows rows;
    rows.AppendRow({});
    MessageBoxCatcher boxes;
    FillFrom(13, rows);
    EXPECT_EQ(0, rows.RowCount());
    EXPECT_TRUE(boxes.Caught().empty());
}

TEST_F(DeviceList, UnsavableFileStopsTheFillWithTheMessage) {
    // A folder in the file's place: the save fails as it would in a read-only directory.
    ASSERT_TRUE(CreateDirectoryA((m_folder + "\\RListDeviceFromGroup.xml").c_str(), nullptr));
    WriteDevices(Device("1", "x", "TVR4820", "127.0.0.2"));
    RecordingRows rows;
    MessageBoxCatcher boxes;
    FillFrom(11, rows);
    ASSERT_EQ(1u, boxes.Caught().size());
    EXPECT_EQ("Failed to get device list !", boxes.Caught()[0].text);
    EXPECT_EQ("Sentrel Config", boxes.Caught()[0].caption);
    EXPECT_EQ(0, rows.RowCount());
}

TEST_F(DeviceList, NoSelectedTreeItemLeavesTheListEmpty) {
    WriteDevices(Device("1", "x", "TVR4820", "127.0.0.2"));
    TreeView_SelectItem(m_tree, nullptr);
    RecordingRows rows;
    rows.AppendRow({});
    long current = -5;
    shell::FillDeviceListFromTree(m_tree, rows, &current, nullptr);
    EXPECT_EQ(0, rows.RowCount());
    EXPECT_EQ(-5, current);
}

TEST_F(DeviceList, VeryLargeListIsReadWhole) {
    std::string content;
    const int count = 5000;
    for (int i = 0; i < count; ++i)
        content += Device(std::to_string(i), "sw" + std::to_string(i), i % 7 ? "TVR4820" : "NonSNMPDevice",
                          "10.0." + std::to_string(i / 250) + "." + std::to_string(i % 250));
    WriteDevices(content);
    RecordingRows rows;
    FillFrom(11, rows);
    EXPECT_EQ(count - (count + 6) / 7, rows.RowCount());
    EXPECT_EQ("sw4999", rows.rows.back().record.strName);
}

// ---------------------------------------------------------------------------------------
// The host's current device

TEST_F(DeviceList, HostsCurrentDeviceIsCheckedAtItsFirstRowOnly) {
    WriteDevices(Device("1", "a", "TVR4820", "127.0.0.2") + Device("2", "b", "TVR4820", "127.0.0.3") +
                 Device("3", "c", "TVR4820", "127.0.0.3") + Device("4", "d", "TVR4820", "127.0.0.4"));
    RecordingRows rows;
    FillFrom(11, rows);
    ASSERT_TRUE(WriteTextFile(m_site, ReadTextFile(m_site).replace(12, 0, " SelectedDeviceIP=\"127.0.0.3\"")));
    rows.ipReads = 0;
    shell::SelectHostCurrentDevice(rows);
    EXPECT_FALSE(rows.rows[0].checked);
    EXPECT_TRUE(rows.rows[1].checked);
    EXPECT_TRUE(rows.rows[1].selectedAndFocused);
    EXPECT_FALSE(rows.rows[2].checked);
    EXPECT_EQ(2, rows.ipReads) << "rows after the match are not looked at";
}

TEST_F(DeviceList, NoCurrentDeviceOrNoMatchChecksNothing) {
    WriteDevices(Device("1", "a", "TVR4820", "127.0.0.2"));
    RecordingRows rows;
    FillFrom(11, rows);
    shell::SelectHostCurrentDevice(rows);
    EXPECT_FALSE(rows.rows[0].checked);
    ASSERT_TRUE(WriteTextFile(m_site, ReadTextFile(m_site).replace(12, 0, " SelectedDeviceIP=\"127.0.0.20\"")));
    shell::SelectHostCurrentDevice(rows);
    EXPECT_FALSE(rows.rows[0].checked) << "compared exactly, not as a prefix";
    EXPECT_EQ("127.0.0.20", shell::HostSelectedDeviceIP());
}

TEST_F(HostInventory, HostErrorTextComesFromTheHost) {
    WriteSite("", Tree("ID=\"1\"", ""), "<ErrorText Code=\"5\">Access denied by the host</ErrorText>");
    EXPECT_EQ("Access denied by the host", shell::HostErrorText(5));
}

}  // namespace
