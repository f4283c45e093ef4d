// Stands in for the header that portable code includes before it asks for versions; nothing here asks.
#pragma once
