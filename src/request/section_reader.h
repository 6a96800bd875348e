// The reader of a procedure's section of the request file: comments, modifiers, the section
// words VARIABLE, EQUATION and their kin, and one request a line, stored as text patterns in the
// selection tables. It looks at no model data; item_selection.h decides what a request meets.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "request/selection_tables.h"
#include "base/notation.h"

// What the reader needs of the run. `run` keeps the comments and the page width that the
// section's lines set.
struct SectionContext {
  RunContext* run = nullptr;
  int32_t procIndex = 0;
  int32_t defaultMode = DEFAULT_SHOW;
  // 1: the lines come from the analysis scratch file, read from its start.
  int32_t analysisProblemsPending = 0;
  std::FILE* requestChannel = nullptr;
  std::FILE* analysisChannel = nullptr;
  Channel* statusChannel = nullptr;
  Channel* logChannel = nullptr;
};

// Reads one section into `lists`: clears both sides over their capacities, reads up to the next
// procedure keyword or the end of the input, and supplies the requests the user left out.
// `currentKeyword` gets the first NAME_LEN characters of the line that ended the section,
// THEEND at the end of the input (blank when reading the analysis file), or the request line
// that overfilled a list.
void readRequestSection(const SectionContext& context, RequestLists& lists, RequestFlags& flags,
                        std::string& currentKeyword);

// The section a word opens.
enum class SectionWord { None, Variables, Equations };

// requestMode: a request selects the items it names, or those of the other kind they reach.
inline constexpr int32_t REQUEST_DIRECT = 1;
inline constexpr int32_t REQUEST_CROSS = 2;

// Who asked for a side: nobody yet, a stored request that bears on it, its section word with no
// request behind it yet, or the reader, which supplied its request.
inline constexpr int32_t ASKED_NOBODY = -1;
inline constexpr int32_t ASKED_REQUEST = 0;
inline constexpr int32_t ASKED_WORD = 1;
inline constexpr int32_t ASKED_SUPPLIED = 2;

// The reader's own state: the mode of the next request and who asked for what.
struct SectionState {
  int32_t requestMode = REQUEST_DIRECT;
  int32_t varAsked = ASKED_NOBODY;
  int32_t equAsked = ASKED_NOBODY;
  bool hintGiven = false;
};

// Applies the word table to a normalized line, as procedure context.procIndex accepts it.
// `consumed` is true for a modifier; the result names the section a section word opens.
SectionWord classifyRequestWord(std::string_view line, const SectionContext& context,
                                SectionState& state, RequestFlags& flags, bool& consumed);

// Codes of isKnownRequestWord.
inline constexpr int32_t WORD_UNKNOWN = 0;
inline constexpr int32_t WORD_KNOWN = 1;
inline constexpr int32_t WORD_NOWAY = 99;

// WORD_KNOWN when the first NAME_LEN characters of `text` are a known word (or blank),
// WORD_NOWAY for the noway request, else WORD_UNKNOWN. Chooses between the messages for a line
// that was not accepted.
int32_t isKnownRequestWord(std::string_view text);

// Cuts a normalized request line into request k of `side`: symbol pattern, element patterns
// ("*" where none is given; past the tenth position the rest is ignored) and dim.
void splitRequest(std::string_view line, const SelectionSide& side, int32_t k);

// The reader's context for a procedure of this run.
SectionContext sectionContextOf(RunContext& run, int32_t defaultMode);
