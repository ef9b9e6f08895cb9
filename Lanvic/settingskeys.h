#pragma once

/// What the program keeps between runs, in the user's settings.
namespace SettingsKey {
inline constexpr char Group[] = "MainWindow";
inline constexpr char Position[] = "pos";
inline constexpr char Size[] = "size";
inline constexpr char Header[] = "header";           // QHeaderView::saveState() of the tree
inline constexpr char HeaderVersion[] = "headerver"; // "header" counts only together with the version below
inline constexpr int CurrentHeaderVersion = 1;
} // namespace SettingsKey
