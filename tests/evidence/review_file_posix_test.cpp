#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <set>

#include "evidence/review_file.h"
#include "tests/support/process_conditions_posix.h"
#include "tests/support/temporary_folder.h"

namespace korvel::evidence {
namespace {

const ReviewedTrail trail = {"a server", "D"};

NewMark markOf(std::int64_t number) {
  return {number, Sha256::of(std::to_string(number)), MarkKind::reviewed, {}};
}

TEST(ReviewsOfEightProcesses, LoseNothing) {
  const test::TemporaryFolder folder;
  const auto file = folder / "review";
  ReviewFile::create(file, trail, "a program");
  constexpr int reviewers = 8;
  constexpr int marksOfEach = 20;
  std::vector<pid_t> processes;
  for (int reviewer = 0; reviewer < reviewers; ++reviewer) {
    const pid_t process = ::fork();
    ASSERT_GE(process, 0);
    if (process != 0) {
      processes.push_back(process);
      continue;
    }
    int status = 0;
    try {
      ReviewFile review(file, trail, ReviewFile::Use::mark, std::chrono::minutes{5});
      for (int i = 0; i < marksOfEach; ++i) {
        const NewMark mark = markOf(reviewer * marksOfEach + i);
        review.add({&mark, 1});
      }
    } catch (...) {
      status = 1;
    }
    ::_exit(status);
  }
  for (const pid_t process : processes) {
    int status = 0;
    ASSERT_EQ(::waitpid(process, &status, 0), process);
    EXPECT_EQ(status, 0);
  }
  std::set<std::int64_t> numbers;
  const auto marks = ReviewFile(file, trail, ReviewFile::Use::read).takeNewMarks();
  for (const ReviewMark& mark : marks) numbers.insert(mark.number.value());
  EXPECT_EQ(marks.size(), reviewers * marksOfEach);
  EXPECT_EQ(numbers.size(), reviewers * marksOfEach);
}

TEST(ReviewOnAFullDisk, SaysSoAndKeepsWhatItHas) {
  const test::TemporaryFolder folder;
  const auto file = folder / "review";
  ReviewFile::create(file, trail, "a program");
  ReviewFile review(file, trail, ReviewFile::Use::mark);
  review.add(std::vector<NewMark>{markOf(1)});
  std::vector<NewMark> many;
  for (int i = 0; i < 5000; ++i) many.push_back(markOf(i));
  std::string failure;
  {
    const test::FullDisk full(1U << 16U);
    try {
      review.add(many);
    } catch (const Error& error) {
      failure = error.description();
    }
  }
  EXPECT_THAT(failure, testing::HasSubstr("cannot be written, and nothing was added"));
  EXPECT_EQ(review.takeNewMarks().size(), 1U);
  review.add(many);
  EXPECT_EQ(review.takeNewMarks().size(), many.size());
}

TEST(ReviewOnAFullDisk, IsNotBegun) {
  const test::TemporaryFolder folder;
  {
    const test::FullDisk full(1U << 10U);
    EXPECT_THROW(ReviewFile::create(folder / "review", trail, "a program"), Error);
  }
  EXPECT_FALSE(std::filesystem::exists(folder / "review"));
}

}  // namespace
}  // namespace korvel::evidence
