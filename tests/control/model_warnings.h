#pragma once

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QLoggingCategory>
#include <cstring>

namespace korvel::test {

/// Checks a model with Qt's model tester and turns its warnings, which it only prints, into test failures.
class ModelWatch {
 public:
  explicit ModelWatch(QAbstractItemModel* model) {
    previous_ = qInstallMessageHandler(&ModelWatch::take);
    tester_ =
        std::make_unique<QAbstractItemModelTester>(model, QAbstractItemModelTester::FailureReportingMode::Warning);
  }
  ~ModelWatch() {
    tester_.reset();
    qInstallMessageHandler(previous_);
  }
  ModelWatch(const ModelWatch&) = delete;
  ModelWatch& operator=(const ModelWatch&) = delete;

 private:
  static void take(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (context.category != nullptr && std::strcmp(context.category, "qt.modeltest") == 0 && type != QtDebugMsg)
      ADD_FAILURE() << "model tester: " << text.toStdString();
  }

  QtMessageHandler previous_ = nullptr;
  std::unique_ptr<QAbstractItemModelTester> tester_;
};

}  // namespace korvel::test
