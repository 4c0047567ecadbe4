#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/tds/answer.h"
#include "tests/support/tds/command.h"
#include "tests/support/tds/prelogin.h"

namespace korvel::test::tds {

/// Moments of a conversation at which the peer can do something else than go on.
enum class Moment {
  /// The client has connected and nothing has been read.
  accepted,
  /// Its pre-login has been read and not yet answered.
  preloginReceived,
  preloginAnswered,
  /// Its login has been read and not yet answered.
  loginReceived,
  loggedIn,
};

/// What a connection does when its client wants no more of an answer.
enum class AttentionManners { answered, ignored };

/// How the peer treats a connection; each connection keeps what held when it came.
struct Manners {
  Encryption encryption = Encryption::available;
  std::map<Moment, Steps> moments;
  AttentionManners attentions = AttentionManners::answered;
  /// Where there is one, attentions are answered when it is opened.
  std::optional<Gate> attentionGate;
  /// What a login is refused with; empty: it is welcome.
  std::vector<Message> refusal;
  /// Packets are at most this large, and as large as the client asks for below that.
  std::size_t packetLimit = 32 * 1024 - 1;
  /// Keys to look at tickets with; without them an integrated login is taken at its word.
  std::filesystem::path keytab;
};

using AnswerMaker = std::function<Answer(const Command&)>;

/// What the test wants said; the test writes, connections read.
class Script {
 public:
  void change(const std::function<void(Manners&)>& change) {
    const std::lock_guard lock(mutex_);
    change(manners_);
  }
  [[nodiscard]] Manners manners() const {
    const std::lock_guard lock(mutex_);
    return manners_;
  }
  void setAnswer(const std::string& text, Answer answer) {
    auto shared = std::make_shared<const Answer>(std::move(answer));
    const std::lock_guard lock(mutex_);
    answers_[text] = std::move(shared);
  }
  void setOthers(AnswerMaker maker) {
    const std::lock_guard lock(mutex_);
    others_ = std::move(maker);
  }
  /// Null where nothing has been written for the command.
  [[nodiscard]] std::shared_ptr<const Answer> answerTo(const Command& command) const {
    AnswerMaker maker;
    {
      const std::lock_guard lock(mutex_);
      if (const auto found = answers_.find(command.text); found != answers_.end()) return found->second;
      maker = others_;
    }
    return maker ? std::make_shared<const Answer>(maker(command)) : nullptr;
  }

 private:
  mutable std::mutex mutex_;
  Manners manners_;
  std::map<std::string, std::shared_ptr<const Answer>> answers_;
  AnswerMaker others_;
};

}  // namespace korvel::test::tds
