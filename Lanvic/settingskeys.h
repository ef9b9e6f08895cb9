#pragma once

/// Names of the user's settings, which the program keeps between runs.
namespace SettingsKey {
inline constexpr char Group[] = "MainWindow";
inline constexpr char Position[] = "pos";
inline constexpr char Size[] = "size";
inline constexpr char Header[] = "header";           // QHeaderView::saveState() of the tree.
inline constexpr char HeaderVersion[] = "headerver"; // "header" is valid only with the version below.
inline constexpr int CurrentHeaderVersion = 1;
} // namespace SettingsKey
