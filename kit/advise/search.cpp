#include "kit/advise/search.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "kit/common/error.h"

namespace kit {

namespace {

constexpr std::size_t kFewestFrames = 4;
constexpr std::size_t kKept = 3;  // of so many candidates one goes on
constexpr double kFirstStep = 0.2, kLastStep = 0.02;
constexpr double kGain = 1e-4;
constexpr std::size_t kStarts = 2;

std::vector<Clip> shortened(std::vector<Clip> clips, std::size_t frames) {
  for (Clip& clip : clips) clip.count = std::min(clip.count, frames);
  return clips;
}

bool better(const Search::Candidate& a, const Search::Candidate& b) { return a.loss < b.loss; }

}  // namespace

std::string chain_text(const Chain& chain) {
  std::vector<std::string> texts;
  for (const Step& step : chain) {
    if (step.enabled) texts.push_back(step_text(step));
  }
  return join(texts, "; ");
}

Search::Search(Trials& trials, const std::vector<Space>& spaces, std::vector<Clip> clips,
               const Weights& weights, SearchSettings settings)
    : trials_(trials),
      spaces_(spaces),
      weights_(weights),
      settings_(std::move(settings)),
      chance_(settings_.seed) {
  std::size_t longest = 0;
  for (const Clip& clip : clips) longest = std::max(longest, clip.count);
  for (std::size_t frames = kFewestFrames; frames < longest; frames *= 2)
    rungs_.push_back(shortened(clips, frames));
  rungs_.push_back(std::move(clips));
  for (const auto& rung : rungs_) untouched_.push_back(trials_.run(conversion(trials_.input()), rung));
  known_[chain_text(conversion(trials_.input()))] = 1;
  best_ = {conversion(trials_.input()), 0, 1};
  if (settings_.keep_chain) best_ = {spaces_.front().start(), 0, loss(spaces_.front().start())};
}

bool Search::evaluate(std::vector<Candidate>& candidates, std::size_t rung) {
  const bool last = rung + 1 == rungs_.size();
  std::vector<std::size_t> open;
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    const auto known = known_.find(chain_text(candidates[i].chain));
    if (last && known != known_.end()) {
      candidates[i].loss = known->second;
    } else {
      open.push_back(i);
    }
  }
  const std::size_t allowed =
      std::min(open.size(), settings_.evaluations - std::min(spent_, settings_.evaluations));
  constexpr std::size_t kBatch = 16;  // whatever the number of threads, so that it changes nothing
  std::size_t done = 0;
  for (; done < allowed && !stopped(); done = std::min(done + kBatch, allowed)) {
    settings_.for_each(std::min(kBatch, allowed - done), [&](std::size_t number) {
      Candidate& each = candidates[open[done + number]];
      each.loss = loss_of(trials_.run(each.chain, rungs_[rung]), untouched_[rung], weights_);
    });
    const std::size_t end = std::min(done + kBatch, allowed);
    for (std::size_t i = done; i < end; ++i) {
      const Candidate& each = candidates[open[i]];
      if (!last) continue;
      known_[chain_text(each.chain)] = each.loss;
      if (each.loss < best_.loss) best_ = each;
    }
    spent_ += end - done;
    if (settings_.progress) settings_.progress({spent_, settings_.evaluations, best_.loss, best_.chain});
  }
  for (std::size_t i = open.size(); i-- > done;)
    candidates.erase(candidates.begin() + static_cast<std::ptrdiff_t>(open[i]));
  return done == open.size();
}

double Search::loss(const Chain& chain) {
  const auto known = known_.find(chain_text(chain));
  if (known != known_.end()) return known->second;
  return loss_of(trials_.run(chain, rungs_.back()), untouched_.back(), weights_);
}

std::vector<Search::Candidate> Search::first_candidates() {
  double cost = 0, factor = 1;
  for (std::size_t rung = 0; rung < rungs_.size(); ++rung, factor /= kKept) cost += factor;
  const auto count = static_cast<std::size_t>(0.4 * static_cast<double>(settings_.evaluations) / cost);
  std::vector<Candidate> candidates;
  std::set<std::string> seen;
  const auto add = [&](std::size_t space, Chain chain) {
    if (seen.insert(chain_text(chain)).second) candidates.push_back({std::move(chain), space});
  };
  for (std::size_t i = 0; i < spaces_.size(); ++i) add(i, spaces_[i].start());
  // Small spaces run out of new ones.
  for (std::size_t tries = 0; candidates.size() < count && tries < 4 * count; ++tries) {
    const std::size_t space = tries % spaces_.size();
    add(space, spaces_[space].random(chance_));
  }
  return candidates;
}

std::vector<Search::Candidate> Search::neighbours(const Candidate& centre, double step) {
  const Space& space = spaces_[centre.space];
  std::vector<Candidate> found;
  std::set<std::string> seen = {chain_text(centre.chain)};
  const auto add = [&](Chain chain) {
    if (seen.insert(chain_text(chain)).second) found.push_back({std::move(chain), centre.space});
  };
  for (const Gene& gene : space.genes()) {
    if (!centre.chain[gene.step].enabled) continue;
    if (gene.choice) {
      const double last = static_cast<double>(gene.values() - 1);
      for (double value = 0; value <= last; ++value) add(space.with(centre.chain, gene, value / last));
      continue;
    }
    const double place = space.place(centre.chain, gene);
    const double least = 1.0 / static_cast<double>(gene.values() - 1);
    for (const double sign : {-1.0, 1.0})
      add(space.with(centre.chain, gene, place + sign * std::max(step, gene.even_ratios ? 0 : least)));
  }
  for (const std::size_t step_number : space.optional_steps()) {
    Chain chain = centre.chain;
    chain[step_number].enabled = !chain[step_number].enabled;
    add(std::move(chain));
  }
  for (int i = 0; i < 2; ++i) {
    Chain chain = centre.chain;
    for (const Gene& gene : space.genes()) {
      if (!gene.choice && chain[gene.step].enabled)
        chain = space.with(chain, gene, space.place(chain, gene) + step * (2 * chance_.share() - 1));
    }
    add(std::move(chain));
  }
  return found;
}

Chain Search::combined(const Candidate& centre, std::vector<Candidate> around) const {
  std::stable_sort(around.begin(), around.end(), better);
  Chain together = centre.chain;
  std::set<std::pair<std::size_t, std::string>> changed;  // step and key, or no key where it is switched
  for (const Candidate& each : around) {
    if (each.loss >= centre.loss) break;
    std::set<std::pair<std::size_t, std::string>> changes;
    for (std::size_t step = 0; step < together.size(); ++step) {
      if (each.chain[step].enabled != centre.chain[step].enabled) changes.insert({step, ""});
    }
    for (const Gene& gene : spaces_[centre.space].genes()) {
      if (each.chain[gene.step].values->at(gene.key) != centre.chain[gene.step].values->at(gene.key))
        changes.insert({gene.step, gene.key});
    }
    if (changes.size() != 1 || !changed.insert(*changes.begin()).second) continue;
    const auto& [step, key] = *changes.begin();
    if (key.empty()) {
      together[step].enabled = each.chain[step].enabled;
    } else {
      (*together[step].values)[key] = each.chain[step].values->at(key);
    }
  }
  return together;
}

Search::Candidate Search::refine(Candidate centre, std::size_t until) {
  for (double step = kFirstStep; step > kLastStep && spent_ < until;) {
    std::vector<Candidate> around = neighbours(centre, step);
    bool goes_on = evaluate(around, rungs_.size() - 1);
    // What helps alone is tried together.
    std::vector<Candidate> together = {{combined(centre, around), centre.space}};
    goes_on = goes_on && evaluate(together, rungs_.size() - 1);
    if (goes_on) around.push_back(together.front());
    const auto best = std::min_element(around.begin(), around.end(), better);
    if (best != around.end() && best->loss < centre.loss - kGain) {
      centre = *best;
    } else {
      step /= 2;
    }
    if (!goes_on) break;
  }
  return centre;
}

Search::Candidate Search::best_with(const std::vector<Candidate>& candidates) {
  if (candidates.empty()) return best_;
  Candidate first = candidates.front();
  first.loss = loss(first.chain);
  return better(first, best_) ? first : best_;
}

Search::Candidate Search::run() {
  std::vector<Candidate> candidates = first_candidates();
  for (std::size_t rung = 0; rung < rungs_.size(); ++rung) {
    const bool goes_on = evaluate(candidates, rung);
    std::stable_sort(candidates.begin(), candidates.end(), better);
    if (!goes_on) return best_with(candidates);
    if (rung + 1 < rungs_.size()) candidates.resize((candidates.size() + kKept - 1) / kKept);
  }
  // The best of each order before the second of any.
  std::vector<Candidate> starts;
  for (const Candidate& each : candidates) {
    const auto same = [&](const Candidate& other) { return other.space == each.space; };
    if (starts.size() < kStarts && std::none_of(starts.begin(), starts.end(), same))
      starts.push_back(each);
  }
  for (std::size_t i = 0; i < starts.size(); ++i) {
    const std::size_t left = settings_.evaluations - std::min(spent_, settings_.evaluations);
    refine(starts[i], spent_ + left / (starts.size() - i));
  }
  return best_;
}

}  // namespace kit
