#pragma once

#include <chrono>
#include <cstddef>

namespace gige {

/// How long a search listens and how often it asks; all times from its first question. A round is one
/// question to all cameras behind an adapter.
struct SearchPace
{
    std::chrono::milliseconds window;          // later answers are ignored
    std::chrono::milliseconds lastRound;       // few cameras would answer a later one in time
    std::chrono::milliseconds deadline;        // for the unicast answer of a camera that is found late
    std::chrono::milliseconds unicastPatience; // for each camera, at least
    unsigned maxRounds;                        // if cameras miss questions, or none answers
};

namespace Pace {

using std::chrono::milliseconds;

/// Long enough for a camera that takes 300 ms for each answer, even if all but the last of the usual rounds
/// are lost. A camera in a foreign subnet receives one question per round: if every fifth packet is lost in
/// each direction, one search in 200,000 misses it.
inline constexpr SearchPace Quick{.window = milliseconds(460),
                                  .lastRound = milliseconds(330),
                                  .deadline = milliseconds(700),
                                  .unicastPatience = milliseconds(400),
                                  .maxRounds = 12};
/// For networks where no camera answers at first, or one needed longer in this search or a recent one. The
/// standard allows a camera to wait for up to a second before it answers.
inline constexpr SearchPace Slow{.window = milliseconds(1000),
                                 .lastRound = milliseconds(600),
                                 .deadline = milliseconds(2200),
                                 .unicastPatience = milliseconds(800),
                                 .maxRounds = 18};

/// A first answer that takes this long means that the network has slow cameras.
inline constexpr milliseconds SlowAfter{280};
/// How many searches stay slow after a late answer: the camera may only have been starting up.
inline constexpr int SlowSearches = 3;

inline constexpr milliseconds RoundInterval{30};
/// Questions that every camera is asked in any case: those without an answer may have been lost on the way to
/// a camera that is not known yet.
inline constexpr std::size_t MinQuestions = 4;
/// How many of the usual rounds also go to the subnet's own broadcast address, as do all additional ones. A
/// camera that receives only those is asked twice, and one with a slow work queue is not kept busy by copies.
inline constexpr std::size_t RoundsToSubnet = 2;
/// The least number of rounds from each of several host addresses of one adapter.
inline constexpr std::size_t MinRounds = 2;
/// When additional rounds begin if no camera has answered, or one is missing that the latest search heard: a
/// camera may need some time for each answer.
inline constexpr milliseconds MissingAfter{120};

/// More cameras than this fill the line with their answers, and are asked less often if some are lost.
inline constexpr std::size_t MaxCamerasForRepeats = 128;
inline constexpr unsigned RoundsForManyCameras = 6;

} // namespace Pace

} // namespace gige
