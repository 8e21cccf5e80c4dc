#pragma once

#include "tests/network/operation.h"
#include "tests/network/servicetest.h"

/// The common part of the tests of a family of operations: the tests of what holds for every
/// operation. A test of a family names its operations and adds what is particular to them.
class OperationTest : public ServiceTest
{
    Q_OBJECT

protected:
    virtual QList<Operation> operations() const = 0;

    /// Calls @p operation once with the service answering @p reply, and compares the request on
    /// the wire, every log line (@p log: those after the start) and every signal.
    void exchange(const Operation &operation, const QByteArray &reply, const QStringList &log,
                  const QStringList &expected);

    /// Compares the bytes that @p call sends and the only line it logs before the answer, none
    /// when @p start is empty.
    void compareRequest(const std::function<void(VoNetworkIntf *)> &call, const QByteArray &request,
                        const QString &start);

    /// The columns for rows that differ in the member "data" of a successful reply.
    static void addDataColumns();

    /// Rows of a "taskId" to ask by and what that is in "json".
    static void addIdentifiersToAskBy();

    /// Rows of the identifier of a new task, which @p signal brings.
    static void addTaskIdentifiers(const char *signal);

    /// Rows of a task in every state, known and not. @p members: those of the data beside the
    /// "status". The others: the answer to each sort of state.
    static void addTaskStates(const QByteArray &members, const QString &processing,
                              const QString &success, const QString &failed);

    /// Compares what @p operation makes of the current row.
    void exchangeData(const Operation &operation);

private Q_SLOTS:
    void sendsExactlyOneRequestAndDeliversItsResult_data();
    void sendsExactlyOneRequestAndDeliversItsResult();
    void readsTheEnvelope_data();
    void readsTheEnvelope();
    void turnsEveryHttpErrorIntoItsFailure_data();
    void turnsEveryHttpErrorIntoItsFailure();
    void failsWhenTheConnectionIsCutOff_data();
    void failsWhenTheConnectionIsCutOff();
    void failsWhenNobodyListens_data();
    void failsWhenNobodyListens();

private:
    void addOperationRows();
};
