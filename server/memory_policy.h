#pragma once

namespace server {

/// Lets the memory of a big message, up to 32 MiB in all, stay with the process for the next
/// one: to have it from the system anew, page by page, takes longer than reading and writing
/// the message. What single arrays of more than 32 MiB took is given back. Before any other
/// thread starts.
void keepRoomForBigMessages();

}  // namespace server
