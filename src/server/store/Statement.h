#pragma once

#include "server/store/DatabaseError.h"

#include <cstdint>
#include <expected>
#include <string>
#include <string_view>
#include <utility>

struct sqlite3_stmt;

namespace stavelin::server {

/// A prepared statement of a Database, which must outlive it. Parameters count from 1, columns from 0.
class Statement
{
public:
    explicit Statement(sqlite3_stmt *statement) : m_statement(statement) {}
    ~Statement();
    Statement(Statement &&other) noexcept : m_statement(std::exchange(other.m_statement, nullptr)) {}
    Statement &operator=(Statement &&) = delete;

    void bind(int parameter, std::int64_t value);
    /// The text is read at the step, and must live until then.
    void bind(int parameter, std::string_view text);

    /// True when there is a row to look at, false when there is none left.
    [[nodiscard]] std::expected<bool, DatabaseError> step();
    [[nodiscard]] std::int64_t integer(int column) const;
    [[nodiscard]] std::string text(int column) const;

    /// Steps to the end and lets go of what was bound, whatever happened: the statement is ready for its next
    /// use.
    [[nodiscard]] std::expected<void, DatabaseError> run();

private:
    sqlite3_stmt *m_statement;
};

} // namespace stavelin::server
