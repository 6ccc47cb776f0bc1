#pragma once

namespace server {

/// Puts the null device where a careless host has left a standard stream closed, so that no
/// socket or file gets the number by which replies are written. Before anything is opened.
void occupyStandardStreams();

}  // namespace server
