#include "AtomScanner.h"

#include <algorithm>
#include <array>
#include <bit>

namespace tarnwick::rex {
namespace {

constexpr unsigned kShortest = 4;  // atoms shorter than this are found by their first byte
constexpr unsigned kWide = 8;
constexpr unsigned kLongestStep = 8;

// The window width and step an atom of `length` bytes (at least kShortest)
// is looked for with: eight-byte windows where they allow a step of four or
// more, since URLs share four-byte pieces with many atoms; four-byte
// windows, with their longer step, for the others.
std::pair<unsigned, unsigned> WidthAndStep(std::size_t length) {
  const auto step = [length](unsigned width) {
    return length < width
               ? 0u
               : std::bit_floor(static_cast<unsigned>(std::min<std::size_t>(length - width + 1, kLongestStep)));
  };
  return step(kWide) >= 4 ? std::pair{kWide, step(kWide)} : std::pair{kShortest, step(kShortest)};
}

// The passes a scan makes: each atom's own width and step, with passes
// merged where one pass costs less than two. A pass costs a look-up for
// each window it reads in a URL of typical length, dearer when its filter
// outgrows the caches; an atom can join a pass of narrower windows or a
// shorter step than its own (its windows then still lie wholly inside it).
// The weights are measured ones: a walk of its own for a hundred short
// atoms cost more than reading ten thousand long atoms' windows four
// positions apart instead of eight, whose filter then still fits the
// second-level cache.
struct Kind {
  unsigned width;
  unsigned step;
};
constexpr std::array<Kind, 8> kKinds = {{{4, 1}, {4, 2}, {4, 4}, {4, 8}, {8, 1}, {8, 2}, {8, 4}, {8, 8}}};

std::size_t KindOf(std::pair<unsigned, unsigned> widthAndStep) {
  for (std::size_t kind = 0; kind < kKinds.size(); ++kind) {
    if (kKinds[kind].width == widthAndStep.first && kKinds[kind].step == widthAndStep.second) return kind;
  }
  return 0;
}

double PassCost(std::size_t kind, std::size_t atoms) {
  if (atoms == 0) return 0;
  constexpr double kTypicalUrl = 80;
  const std::size_t filterBytes = FilterBytes(atoms * kKinds[kind].step);
  const double perWindow = filterBytes <= (32u << 10) ? 1 : filterBytes <= (256u << 10) ? 1.5 : 3;
  return kTypicalUrl / kKinds[kind].step * perWindow;
}

// For each kind, the kind of the pass its atoms join; `atoms` counts the
// atoms of each kind.
std::array<std::size_t, 8> PlanPasses(std::array<std::size_t, 8> atoms) {
  std::array<std::size_t, 8> into{};
  for (std::size_t kind = 0; kind < into.size(); ++kind) into[kind] = kind;
  for (;;) {
    double bestGain = 0;
    std::size_t from = 0;
    std::size_t to = 0;
    for (std::size_t b = 0; b < atoms.size(); ++b) {
      for (std::size_t a = 0; a < atoms.size(); ++a) {
        if (a == b || atoms[a] == 0 || atoms[b] == 0 || kKinds[a].width > kKinds[b].width ||
            kKinds[a].step > kKinds[b].step) {
          continue;
        }
        const double gain = PassCost(a, atoms[a]) + PassCost(b, atoms[b]) - PassCost(a, atoms[a] + atoms[b]);
        if (gain > bestGain) {
          bestGain = gain;
          from = b;
          to = a;
        }
      }
    }
    if (bestGain <= 0) return into;
    atoms[to] += atoms[from];
    atoms[from] = 0;
    for (auto& target : into) {
      if (target == from) target = to;
    }
  }
}

}  // namespace

AtomScanner::AtomScanner(const std::vector<std::string>& atoms) {
  starts_.reserve(atoms.size() + 1);
  for (const auto& atom : atoms) {
    starts_.push_back(static_cast<std::uint32_t>(text_.size()));
    text_ += atom;
  }
  starts_.push_back(static_cast<std::uint32_t>(text_.size()));
  const auto atomCount = static_cast<std::uint32_t>(atoms.size());

  // Atoms under four bytes, by their first byte.
  shortStarts_.assign(257, 0);
  for (std::uint32_t atom = 0; atom < atomCount; ++atom) {
    if (atoms[atom].size() < kShortest) ++shortStarts_[static_cast<unsigned char>(atoms[atom][0]) + 1u];
  }
  for (std::size_t b = 0; b < 256; ++b) shortStarts_[b + 1] += shortStarts_[b];
  shortAtoms_.resize(shortStarts_[256]);
  std::vector<std::uint32_t> next(shortStarts_.begin(), shortStarts_.end() - 1);
  for (std::uint32_t atom = 0; atom < atomCount; ++atom) {
    if (atoms[atom].size() >= kShortest) continue;
    const auto first = static_cast<unsigned char>(atoms[atom][0]);
    shortFirst_[first] = true;
    shortAtoms_[next[first]++] = atom;
  }

  std::array<std::size_t, 8> perKind{};
  for (const auto& atom : atoms) {
    if (atom.size() >= kShortest) ++perKind[KindOf(WidthAndStep(atom.size()))];
  }
  const std::array<std::size_t, 8> plan = PlanPasses(perKind);
  const auto kindOf = [&](std::uint32_t atom) { return kKinds[plan[KindOf(WidthAndStep(atoms[atom].size()))]]; };

  // About how many atoms hold each window (counted in hashed buckets, so a
  // collision only makes a window look more shared; small enough to stay in
  // the cache). Where some atoms are filed under four-byte windows, the
  // four-byte pieces of the others count too: a piece such as "www." that
  // many atoms hold is as common in URLs, and filing a short atom under it
  // would have it looked up for one URL in five.
  bool narrowFiled = false;
  for (std::size_t kind = 0; kind < perKind.size(); ++kind) {
    narrowFiled = narrowFiled || (perKind[kind] != 0 && kKinds[plan[kind]].width == kShortest);
  }
  const unsigned countBits = std::clamp(Log2Ceiling(text_.size() / 4), 12u, 18u);
  std::vector<std::uint16_t> sharing(std::size_t{1} << countBits, 0);
  const auto bucket = [&](std::uint64_t window) -> std::uint16_t& {
    return sharing[MixKey(window) >> (64 - countBits)];
  };
  std::vector<std::uint64_t> windows;
  const auto windowsOf = [&](std::uint32_t atom) {
    windows.clear();
    const std::string& text = atoms[atom];
    const unsigned width = kindOf(atom).width;
    for (std::size_t at = 0; at + width <= text.size(); ++at) windows.push_back(Window(text.data() + at, width));
  };
  for (std::uint32_t atom = 0; atom < atomCount; ++atom) {
    if (atoms[atom].size() < kShortest) continue;
    windowsOf(atom);
    std::sort(windows.begin(), windows.end());
    windows.erase(std::unique(windows.begin(), windows.end()), windows.end());
    for (const std::uint64_t window : windows) {
      std::uint16_t& count = bucket(window);
      if (count < UINT16_MAX) ++count;
    }
    if (!narrowFiled || kindOf(atom).width == kShortest) continue;
    const std::string& text = atoms[atom];
    for (std::size_t at = 0; at + kShortest <= text.size(); ++at) {
      std::uint16_t& count = bucket(Window<4>(text.data() + at));
      if (count < UINT16_MAX) ++count;
    }
  }

  // Each atom is filed, for each offset from 0 to step - 1 at which its
  // first sampled window may lie, under the least shared of the windows at
  // that offset plus a multiple of the step.
  using Filed = KeyedRuns<Anchor>::Entry;
  std::vector<std::vector<Filed>> filed;
  const auto passFor = [&](unsigned width, unsigned step) -> std::size_t {
    for (std::size_t pass = 0; pass < passes_.size(); ++pass) {
      if (passes_[pass].width == width && passes_[pass].step == step) return pass;
    }
    passes_.push_back({});
    passes_.back().width = width;
    passes_.back().step = step;
    filed.emplace_back();
    return passes_.size() - 1;
  };
  // Each pass's entries are counted first: a list of a hundred thousand
  // atoms files nearly a million, and growing the vectors would copy them.
  for (std::size_t kind = 0; kind < perKind.size(); ++kind) {
    if (perKind[kind] == 0) continue;
    const Kind joined = kKinds[plan[kind]];
    auto& into = filed[passFor(joined.width, joined.step)];
    into.reserve(into.capacity() + perKind[kind] * joined.step);
  }
  for (std::uint32_t atom = 0; atom < atomCount; ++atom) {
    if (atoms[atom].size() < kShortest) continue;
    const auto [width, step] = kindOf(atom);
    auto& into = filed[passFor(width, step)];
    windowsOf(atom);
    for (std::size_t offset = 0; offset < step; ++offset) {
      std::size_t best = offset;
      for (std::size_t at = offset + step; at < windows.size(); at += step) {
        if (bucket(windows[at]) < bucket(windows[best])) best = at;
      }
      const std::string& text = atoms[atom];
      const auto tail = static_cast<std::uint32_t>(Window<4>(text.data() + text.size() - 4));
      into.push_back(
          {windows[best], {atom, static_cast<std::uint32_t>(best), static_cast<std::uint32_t>(text.size()), tail}});
    }
  }
  sharing = {};

  for (std::size_t index = 0; index < passes_.size(); ++index) {
    passes_[index].anchors = KeyedRuns<Anchor>(std::move(filed[index]));
  }
  // The cheapest pass first: it has the fewest windows filed.
  std::sort(passes_.begin(), passes_.end(),
            [](const Pass& a, const Pass& b) { return a.anchors.size() < b.anchors.size(); });
}

bool AtomScanner::OccursAt(std::string_view text, std::size_t start, std::uint32_t atom) const {
  const char* atomText = text_.data() + starts_[atom];
  const std::size_t length = starts_[atom + 1] - starts_[atom];
  if (start + length > text.size()) return false;
  const char* subject = text.data() + start;
  std::size_t at = 0;
  for (; at + 8 <= length; at += 8) {
    std::uint64_t expected;
    std::memcpy(&expected, atomText + at, sizeof expected);
    if (Window<8>(subject + at) != expected) return false;
  }
  for (; at < length; ++at) {
    if (FoldByte(subject[at]) != atomText[at]) return false;
  }
  return true;
}

std::size_t AtomScanner::MemoryBytes() const {
  std::size_t bytes = sizeof *this + text_.capacity() + starts_.capacity() * sizeof(std::uint32_t) +
                      passes_.capacity() * sizeof(Pass) +
                      (shortStarts_.capacity() + shortAtoms_.capacity()) * sizeof(std::uint32_t);
  for (const Pass& pass : passes_) {
    bytes += pass.anchors.MemoryBytes();
  }
  return bytes;
}

}  // namespace tarnwick::rex
