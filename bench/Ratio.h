#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace snaplift::bench {

// Whether the files that a group reads are in the page cache. It is printed beside the figure; to
// make it true is the group's own job: files that were just written or read are hot, and
// evictFromPageCache() in beforeEach() makes them cold.
enum class PageCache { Hot, Cold };

// One thing that is measured. It does its whole job once, on a single call that should take a
// millisecond or more, and answers whether the job came out right: a wrong result fails the run.
using Job = std::function<bool()>;

// A floor and the subjects that are measured against it: each subject's bar is the most that its
// time may be, as a multiple of the floor's.
class Group {
public:
  // `setUp` runs before each timing of each variant and is not timed.
  Group& beforeEach(std::function<void()> setUp);
  // Once for each group. The variant's own `setUp` runs after the group's.
  Group& floor(std::string name, Job job, std::function<void()> setUp = {});
  Group& subject(std::string name, double bar, Job job, std::function<void()> setUp = {});

private:
  friend class Ratios;
  struct Variant {
    std::string name;
    double bar;  // 0 for the floor
    Job job;
    std::function<void()> setUp;
    bool isWarm = false;
    bool isWrong = false;
  };
  Group(std::string name, PageCache pageCache);
  double secondsOf(Variant& variant) const;
  std::string fullNameOf(const Variant& variant) const { return m_name + "/" + variant.name; }

  std::string m_name;
  PageCache m_pageCache;
  std::function<void()> m_setUp;
  std::vector<Variant> m_variants;
};

// A benchmark program: groups of variants that run interleaved in shuffled order within one run,
// since a fixed order favours whoever comes second. Every variant is run once to warm up and then
// timed 15 times; medians are compared. Large buffers come fresh from the system each time, as in a
// program that does its job once.
//
//   int main(int argc, char** argv) {
//     Ratios ratios;
//     ratios.group("index of 100,000 entries", PageCache::Hot)
//         .floor("read and walk", [&] { return walk(path) == 100'000; })
//         .subject("index", 0.95, [&] { return index(path) == 100'000; });
//     return ratios.run(argc, argv);
//   }
//
// run() prints a line for each subject and answers 1 when a bar was missed or a job went wrong. It
// takes Google Benchmark's own arguments; --benchmark_filter matches "group/variant", and groups
// of which not all variants ran, or not with a right result, are left out.
class Ratios {
public:
  Group& group(std::string name, PageCache pageCache);

  // A figure other than a time, for the same table: peak memory, say. `measure` is called once,
  // before the timings.
  void figure(std::string name, std::string unit, double bar, std::function<double()> measure);

  int run(int argc, char** argv);

private:
  struct Figure {
    std::string name;
    std::string unit;
    double bar;
    std::function<double()> measure;
  };

  using Row = std::vector<std::string>;
  using Timings = std::map<std::string, std::vector<double>>;  // in seconds, by full name

  void registerVariants(Group& group);
  std::vector<Row> rowsOf(const Group& group, const Timings& timings);
  Row rowOf(const Figure& figure);
  std::string verdict(double value, double bar);

  bool m_isGood = true;
  std::vector<std::unique_ptr<Group>> m_groups;
  std::vector<Figure> m_figures;
};

}  // namespace snaplift::bench
