// The host's menu building from plug-in texts ("/" between levels, "&" access keys,
// "status\ntooltip" prompts).
#include <gtest/gtest.h>

#include "host/orblane/menu_builder.h"

using namespace orblane;

namespace {

struct Menu {
    HMENU h = CreateMenu();
    ~Menu() { DestroyMenu(h); }
};

void AddPopup(HMENU bar, const wchar_t* text) { AppendMenuW(bar, MF_POPUP | MF_STRING, reinterpret_cast<UINT_PTR>(CreatePopupMenu()), text); }

}  // namespace

TEST(SplitMenuPath, SplitsLevelsAtSlashes) {
    EXPECT_EQ(SplitMenuPath(L"&Plug-In/&Halvo Console Plug-In"),
              (std::vector<std::wstring>{L"&Plug-In", L"&Halvo Console Plug-In"}));
    EXPECT_EQ(SplitMenuPath(L"&UserMgr"), (std::vector<std::wstring>{L"&UserMgr"}));
}

TEST(SplitMenuPath, DropsEmptyLevels) {
    EXPECT_EQ(SplitMenuPath(L"/a//b/"), (std::vector<std::wstring>{L"a", L"b"}));
    EXPECT_TRUE(SplitMenuPath(L"").empty());
    EXPECT_TRUE(SplitMenuPath(L"/").empty());
}

TEST(SplitPrompt, StatusTextThenTooltip) {
    Prompt p = SplitPrompt(L"Customization device Sentrel function\nSentrel Customization");
    EXPECT_EQ(p.status, L"Customization device Sentrel function");
    EXPECT_EQ(p.tooltip, L"Sentrel Customization");
    // Blanks are kept as they are (the RADIUS prompt has two).
    p = SplitPrompt(L"Configure Sentrel that can receive the trap event  from the device\nSentrel");
    EXPECT_EQ(p.status, L"Configure Sentrel that can receive the trap event  from the device");
    EXPECT_EQ(p.tooltip, L"Sentrel");
}

TEST(SplitPrompt, WithoutNewlineBothPartsAreTheText) {
    Prompt p = SplitPrompt(L"Only status");
    EXPECT_EQ(p.status, L"Only status");
    EXPECT_EQ(p.tooltip, L"Only status");
}

TEST(PlainMenuText, DropsAccessMarksAndEllipsis) {
    EXPECT_EQ(PlainMenuText(L"&ACL Manager..."), L"ACL Manager");
    EXPECT_EQ(PlainMenuText(L"&Raduis Server..."), L"Raduis Server");
    EXPECT_EQ(PlainMenuText(L"Save && &Exit"), L"Save & Exit");
    EXPECT_EQ(PlainMenuText(L"&Refresh\tF5"), L"Refresh");
}

TEST(AccessKey, IsTheLetterAfterASingleAmpersand) {
    EXPECT_EQ(AccessKey(L"&Plug-In"), L'p');
    EXPECT_EQ(AccessKey(L"&Halvo Console Plug-In"), L'h');
    EXPECT_EQ(AccessKey(L"E&xit"), L'x');
    EXPECT_EQ(AccessKey(L"A && B &C"), L'c');
    EXPECT_EQ(AccessKey(L"None"), 0);
}

TEST(AddCommandAtPath, CreatesNestedPopupsBeforeTheGivenTopLevelItem) {
    Menu bar;
    AddPopup(bar.h, L"&File");
    AddPopup(bar.h, L"&Help");
    HMENU target = AddCommandAtPath(bar.h, L"&Plug-In/&Halvo Console Plug-In", L"&ACL Manager...", 40000,
                                    FindMenuItem(bar.h, L"&Help", true));
    ASSERT_NE(target, nullptr);
    ASSERT_EQ(GetMenuItemCount(bar.h), 3);
    EXPECT_EQ(MenuItemText(bar.h, 0), L"&File");
    EXPECT_EQ(MenuItemText(bar.h, 1), L"&Plug-In");
    EXPECT_EQ(MenuItemText(bar.h, 2), L"&Help");
    HMENU plugIn = GetSubMenu(bar.h, 1);
    ASSERT_EQ(GetMenuItemCount(plugIn), 1);
    EXPECT_EQ(MenuItemText(plugIn, 0), L"&Halvo Console Plug-In");
    HMENU halvo = GetSubMenu(plugIn, 0);
    EXPECT_EQ(halvo, target);
    ASSERT_EQ(GetMenuItemCount(halvo), 1);
    EXPECT_EQ(MenuItemText(halvo, 0), L"&ACL Manager...");
    EXPECT_EQ(GetMenuItemID(halvo, 0), 40000u);
    EXPECT_EQ(FindPopupAtPath(bar.h, L"&Plug-In/&Halvo Console Plug-In"), halvo);
}

TEST(AddCommandAtPath, SharesPopupsOfTheSameText) {
    Menu bar;
    AddPopup(bar.h, L"&Help");
    AddCommandAtPath(bar.h, L"&Plug-In/&Halvo Console Plug-In", L"&ACL Manager...", 40000, 0);
    AddCommandAtPath(bar.h, L"&Plug-In/&Halvo Console Plug-In", L"&Other...", 40001, 0);
    AddCommandAtPath(bar.h, L"&Plug-In", L"&Direct...", 40002, 0);
    AddCommandAtPath(bar.h, L"&UserMgr", L"&Raduis Server...", 40003, FindMenuItem(bar.h, L"&Help", true));
    ASSERT_EQ(GetMenuItemCount(bar.h), 3);
    EXPECT_EQ(MenuItemText(bar.h, 0), L"&Plug-In");
    EXPECT_EQ(MenuItemText(bar.h, 1), L"&UserMgr");
    EXPECT_EQ(MenuItemText(bar.h, 2), L"&Help");
    HMENU plugIn = GetSubMenu(bar.h, 0);
    ASSERT_EQ(GetMenuItemCount(plugIn), 2);
    HMENU halvo = GetSubMenu(plugIn, 0);
    ASSERT_EQ(GetMenuItemCount(halvo), 2);
    EXPECT_EQ(GetMenuItemID(halvo, 1), 40001u);
    EXPECT_EQ(MenuItemText(plugIn, 1), L"&Direct...");
    EXPECT_EQ(GetMenuItemID(GetSubMenu(bar.h, 1), 0), 40003u);
}

TEST(AddCommandAtPath, MatchesTextsExactly) {
    Menu bar;
    AddCommandAtPath(bar.h, L"&Tools", L"A", 1, -1);
    AddCommandAtPath(bar.h, L"Tools", L"B", 2, -1);  // no access key: another menu
    EXPECT_EQ(GetMenuItemCount(bar.h), 2);
    EXPECT_EQ(FindPopupAtPath(bar.h, L"&Tools/Missing"), nullptr);
}

TEST(AddCommandAtPath, EmptyPathPutsTheItemIntoTheBar) {
    Menu bar;
    EXPECT_EQ(AddCommandAtPath(bar.h, L"", L"&Go", 7, -1), bar.h);
    ASSERT_EQ(GetMenuItemCount(bar.h), 1);
    EXPECT_EQ(GetMenuItemID(bar.h, 0), 7u);
}
