// What the plug-in learns from the host: registry settings, the opened submap,
// the domain tree, the devices of a tree node and the host's selected device.
#pragma once
#include <windows.h>
#include <commctrl.h>
#include <msxml2.h>
#include <string>

namespace shell {

// Opened submap ID: 0 when the module is loaded, -1 means none.
extern long g_lOpenedSubmapID;

// One host device as a row of the device list, in column order 1..6 (column 0 is the check box).
struct DeviceRecord {
    std::string strName;
    std::string strDeviceType;
    std::string strIP;
    std::string strReadCommunity;
    std::string strWriteCommunity;
    std::string strDeviceID;  // the host's text, shown as it came
    long nDeviceID = 0;       // the same number as the row's item data
};

// Device-type text that marks a device that does not speak SNMP.
inline constexpr char kNonSnmpDevice[] = "NonSNMPDevice";
// File that every device-list fill writes into the current directory.
inline constexpr char kDeviceListFile[] = "RListDeviceFromGroup.xml";

// Registry value names under the host's keys.
inline constexpr char kRootName[] = "RootName";
inline constexpr char kRadiusSite[] = "RadiusSite";
inline constexpr char kACLExe[] = "ACLExe";

// Reads a string value under HKEY_CURRENT_USER with a 60-byte limit (terminating zero
// included); a missing value, a value of another type, or one that does not fit gives "".
std::string ReadRegistryString(const std::string& keyPath, const char* valueName);
// The key paths, from the string table.
std::string SettingsKeyPath();     // "Software\Kestrix\OrblaneNMS\Settings"
std::string DeviceTypesKeyPath();  // "Software\Kestrix\Function\DeviceType"

// ASCII-to-integer as the C library does it: blanks, a sign, digits up to the first other
// character; no digits gives 0; values beyond 32 bits are clamped.
long AsciiToLong(const std::string& text);

// The host's text for a result code (IHostSystem::GetErrorText); "" when unavailable.
std::string HostErrorText(long lResult);

// The IP text of the device selected in the host; "" when none or the host is unavailable.
std::string HostSelectedDeviceIP();

// The device list as the fill needs it: the device panel's list control implements this.
class DeviceRowList {
public:
    virtual ~DeviceRowList() = default;
    virtual void DeleteAllRows() = 0;
    // Appends a row: column 0 empty with its check box cleared, columns 1..6 from the record,
    // item data nDeviceID.
    virtual void AppendRow(const DeviceRecord& record) = 0;
    virtual int RowCount() const = 0;
    virtual std::string RowIP(int row) const = 0;  // column 3, "Device IP"
    // Sets the row's check box and gives it the selected and focused states.
    virtual void CheckSelectAndFocus(int row) = 0;
};

// Builds the tree control from the host's domain tree (domains and submaps, expanded,
// the opened submap selected).
class CDomainTreeLoader {
public:
    void SetTree(HWND hwndTree) { m_hwndTree = hwndTree; }
    // True when a tree was built. hwndOwner owns the host's error message box.
    bool Load(HWND hwndOwner = nullptr);

private:
    void AddChildren(IXMLDOMElement* element, HTREEITEM parent);

    HWND m_hwndTree = nullptr;
    HTREEITEM m_hSelect = nullptr;
    int m_nDepth = 0;
};

// Device list from the tree's selected node: empties the list, stores the node ID
// in *pnCurrentNode, asks the host, saves "RListDeviceFromGroup.xml" and appends one row
// per usable "DEVICEINFO". An XML failure stops the fill with "Failed to get device list !"
// (caption "Sentrel Config"); rows already appended stay.
void FillDeviceListFromTree(HWND hwndTree, DeviceRowList& list, long* pnCurrentNode, HWND hwndOwner);

// Checks, selects and focuses the first row whose "Device IP" equals the host's selected device.
void SelectHostCurrentDevice(DeviceRowList& list);

}  // namespace shell
