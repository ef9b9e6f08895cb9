#pragma once

#include <chrono>
#include <cstddef>

namespace gige {

/// How long a search listens and how often it asks; all times from its first question. A round is one
/// question to all cameras behind an adapter.
struct SearchPace
{
    std::chrono::milliseconds window;          // cameras that are heard later are not taken up
    std::chrono::milliseconds lastRound;       // later questions would find few cameras that answer in time
    std::chrono::milliseconds deadline;        // for the unicast answer of a camera that was found late
    std::chrono::milliseconds unicastPatience; // with one camera, at least
    unsigned maxRounds;                        // where cameras miss questions, or none is heard
};

namespace Pace {

using std::chrono::milliseconds;

/// Hears out a camera that takes 300 ms for each answer, even when all but the last of the usual rounds were
/// lost to it. A camera of a foreign subnet hears one question in each round: where every fifth packet is
/// lost either way, it stays unfound in one search of 200,000.
inline constexpr SearchPace Quick{.window = milliseconds(460),
                                  .lastRound = milliseconds(330),
                                  .deadline = milliseconds(700),
                                  .unicastPatience = milliseconds(400),
                                  .maxRounds = 12};
/// Where no camera is heard at first, or one needed longer in this search or a recent one. By the standard a
/// camera may wait for up to a second before it answers.
inline constexpr SearchPace Slow{.window = milliseconds(1000),
                                 .lastRound = milliseconds(600),
                                 .deadline = milliseconds(2200),
                                 .unicastPatience = milliseconds(800),
                                 .maxRounds = 18};

/// A first answer that takes as long means that the network has slow cameras.
inline constexpr milliseconds SlowAfter{280};
/// A camera that was late may have been starting, and be quick from then on.
inline constexpr int SlowSearches = 3;

inline constexpr milliseconds RoundInterval{30};
/// Questions that every camera is asked, however well the line works: those that none is heard of may have
/// been lost to a camera that is not known yet.
inline constexpr std::size_t MinQuestions = 4;
/// So many of them go to the subnet's own broadcast address as well, as do all that are asked beyond: a
/// camera that hears only those is asked twice, and one with a slow work queue is not kept busy by copies.
inline constexpr std::size_t RoundsToSubnet = 2;
/// Each of several host addresses of one adapter asks as often, at least.
inline constexpr std::size_t MinRounds = 2;
/// Only then the cameras behind an adapter are asked further because none is heard, or one is missing that
/// the latest search heard: it may need some time for each answer.
inline constexpr milliseconds MissingAfter{120};

/// More cameras fill the line with their answers, and are asked less often when some are lost.
inline constexpr std::size_t MaxCamerasForRepeats = 128;
inline constexpr unsigned RoundsForManyCameras = 6;

} // namespace Pace

} // namespace gige
