#pragma once

/// Prepares the process. Call it first in main():
///
/// - Opens the null device for every standard stream that a careless host left closed. Otherwise a
///   socket or file could get the descriptor to which replies are written.
/// - Makes fatal errors, such as running out of memory, end the process without a message.
/// - Lets the allocator keep the memory of big messages, up to 32 MiB, for the next one. Getting
///   it from the system again, page by page, takes longer than reading and writing the message.
void setUpProcess();
